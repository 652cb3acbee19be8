// For the checkers of XML files: a document with line numbers, and the output of findings.
#pragma once

#include "xml_parser.h"

#include <functional>
#include <string>
#include <unordered_map>

namespace zentrak::check {

// A parsed file that knows the line of each of its elements.
class Document {
public:
    // Returns false, after a line on standard error that says why, if the file can't be read or isn't XML.
    bool read(const std::string& path);

    const std::string& path() const { return mPath; }
    const xml::XmlNode& root() const { return mRoot; }
    int line(const xml::XmlNode& node) const; // from 1; 0 for a node of another document
    std::string folder() const;               // of the file, with a trailing slash, or empty

private:
    void findLines(const std::string& text);

    std::string mPath;
    xml::XmlParser mRoot;
    std::unordered_map<const xml::XmlNode*, int> mLines;
};

// The findings in one document, printed immediately: "PATH:LINE: TEXT".
class Findings {
public:
    explicit Findings(const Document& document) : mDocument(document) {}

    int count() const { return mCount; }
    void say(const xml::XmlNode& node, const std::string& what);

    // Calls `visit` for each child element of `node`. Text, which no loader reads, is a finding.
    void eachElement(const xml::XmlNode& node, const std::function<void(const xml::XmlNode&)>& visit);

    // Parses a number as atof does. Reports text that isn't a number, or isn't finite; `name` names it in the
    // finding.
    double number(const xml::XmlNode& node, const std::string& name, const std::string& text);

protected:
    ~Findings() = default;

    const Document& mDocument;

private:
    int mCount = 0;
};

bool isElement(const xml::XmlTag& tag);

} // namespace zentrak::check
