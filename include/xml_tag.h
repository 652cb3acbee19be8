// One tag: its kind, name and attributes, all texts. Reading and writing define the dialect: no entities,
// no CDATA, names of ASCII letters and digits, attribute values on one line.
#pragma once

#include "xml_bufferreader.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zentrak::xml {

// The value of a missing attribute. Missing and empty ones can't be distinguished, and callers rely on that.
inline const std::string emptyString;

class TagReader;

class XmlTag {
public:
    enum Type : uint32_t {
        Normal = 0,          // an element's start or end tag
        Comment = 1,         // name "COMMENT", body in the argument "content"
        SpecialQuestion = 2, // <?name ...?>
        SpecialExclaim = 3,  // <!word word ...>, name "SPECIAL_EXCLAIM"
        Text = 4,            // name "!!!text", body in the argument "content"
    };

    struct Argument {
        std::string name;
        std::string value;

        Argument() = default;
        Argument(std::string_view aName, std::string_view aValue) : name(aName), value(aValue) {}
    };

    Type type = Normal;
    bool closed = true; // has no children and no end tag of its own
    std::string name;
    std::vector<Argument> arguments; // in order of first insertion

    Type getType() const { return type; }
    bool isClosed() const { return closed; }
    const std::string& getName() const { return name; }

    // The value of the first argument of this name, or xml::emptyString. It lives as long as the tag stays as
    // it is.
    const std::string& getValue(std::string_view argument) const;

    // Replaces the value of the first argument of this name, or appends one.
    void setValue(const std::string& argument, const std::string& value);
    void setValue(const std::string& argument, double value); // as "%.25g"
    void setValue(const std::string& argument, int value);    // as "%0d"
    void setName(const std::string& newName) { name = newName; }
    void setClosed(bool isClosed) { closed = isClosed; }
    void setTag(const XmlTag& tag); // copies all four fields

    // Writes the tag and a line end, and flushes. Nothing is escaped. A closed element ends in "/>" where
    // `allowSelfClose` is set. Throws "XmlTag::write; Unknown tagtype!".
    void write(std::ostream& os, bool allowSelfClose) const;

    // Reads the next tag of any type into this one. Throws Exception where the text breaks the dialect, and
    // "EOF" where it ends inside a tag or holds no further one; the reader then stands at the failure, and
    // the tag is reset.
    void parse(BufferReader& reader);

    // Its parts, which add to the tag as it is. The reader is after the "<" for parseNormal, on the "!" or
    // "?" for the special ones, and on the first byte for text. A failure leaves the tag as it was.
    void parseNormal(BufferReader& reader);
    void parseComment(BufferReader& reader);
    void parseText(BufferReader& reader);
    void parseSpecialExclaim(BufferReader& reader);
    void parseSpecialQuestion(BufferReader& reader);
    // Reads name, "=" and value. `terminators`, what the caller would stop at, has no effect on the reading.
    // Without `requireEquals` the value follows the name without "=".
    void parseAttribute(BufferReader& reader, const std::string& terminators, bool requireEquals);

private:
    void reset();
    void add(const TagReader& raw);
};

// Writes the tag, self-closed if it is closed.
std::ostream& operator<<(std::ostream& os, const XmlTag& tag);

} // namespace zentrak::xml
