// What the checkers of XML files share: a document that knows its lines, and how a finding is said.
#pragma once

#include "xml_parser.h"

#include <functional>
#include <string>
#include <unordered_map>

namespace zentrak::check {

// A parsed file that knows the line of each of its elements.
class Document {
public:
    // False, with a line on the standard error stream that says why, for a file that can't be read or is no
    // XML.
    bool read(const std::string& path);

    const std::string& path() const { return mPath; }
    const xml::XmlNode& root() const { return mRoot; }
    int line(const xml::XmlNode& node) const; // from 1; 0 for a node of another document
    std::string folder() const;               // of the file, with a slash at its end, or empty

private:
    void findLines(const std::string& text);

    std::string mPath;
    xml::XmlParser mRoot;
    std::unordered_map<const xml::XmlNode*, int> mLines;
};

// What is found in one document, printed as it comes: "PATH:LINE: TEXT".
class Findings {
public:
    explicit Findings(const Document& document) : mDocument(document) {}

    int count() const { return mCount; }
    void say(const xml::XmlNode& node, const std::string& what);

    // Each element in `node` with `visit`; text, which no loader reads, is a finding.
    void eachElement(const xml::XmlNode& node, const std::function<void(const xml::XmlNode&)>& visit);

    // A text that stands for a number, as atof reads it. Says what is none, or none that is finite. `name` is
    // how a finding calls it.
    double number(const xml::XmlNode& node, const std::string& name, const std::string& text);

protected:
    ~Findings() = default;

    const Document& mDocument;

private:
    int mCount = 0;
};

bool isElement(const xml::XmlTag& tag);

} // namespace zentrak::check
