// Shared by the tests of the XML library: a tree as one line of text, and exception texts.
#pragma once

#include "support.h"
#include "xml_parser.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace zentrak::test {

// The text of the exception that the call throws, or "(nothing)"; its log lines are suppressed.
inline std::string failure(const std::function<void()>& call) {
    const CaptureStdout swallow;
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "(nothing)";
}

// The text of the exception that parsing throws.
inline std::string parseFailure(const std::string& text) {
    xml::XmlParser parser;
    return failure([&] { parser.parse(text); });
}

// The tag and its subtree: type/name, "/" if closed, [attributes], (children).
inline std::string shape(const xml::XmlNode& node) {
    std::string text =
        node.type == xml::XmlTag::Normal ? node.name : std::to_string(node.type) + ":" + node.name;
    if (node.closed)
        text += "/";
    if (!node.arguments.empty()) {
        text += "[";
        for (const xml::XmlTag::Argument& argument : node.arguments)
            text += (&argument == &node.arguments.front() ? "" : ",") + argument.name + "=" + argument.value;
        text += "]";
    }
    if (!node.children.empty()) {
        text += "(";
        for (const xml::XmlNode* child : node.children)
            text += (child == node.children.front() ? "" : " ") + shape(*child);
        text += ")";
    }
    return text;
}

// The shape of the document that the text holds.
inline std::string parsed(const std::string& text) {
    xml::XmlParser parser;
    parser.parse(text);
    return shape(parser);
}

// The document parsed and written again.
inline std::string rewritten(const std::string& text) {
    xml::XmlParser parser;
    parser.parse(text);
    std::string out;
    parser.write(out, "\t");
    return out;
}

} // namespace zentrak::test
