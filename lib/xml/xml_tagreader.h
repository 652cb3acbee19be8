// Reads one tag without copying it: names and values are views of the text. The parser copies them once, to
// where they stay.
#pragma once

#include "xml_tag.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zentrak::xml {

// All pieces live until the next read and as long as the text.
class TagReader {
public:
    struct Attribute {
        std::string_view name;
        std::string_view value;
    };

    XmlTag::Type type = XmlTag::Normal;
    bool closed = true;
    std::string_view name;
    std::vector<Attribute> attributes; // no name twice

    // Reads the next tag of any type, in place of the last one.
    void read(BufferReader& reader);

    // Its parts, which add to what was read; the reader is where XmlTag says.
    void readNormal(BufferReader& reader);
    void readComment(BufferReader& reader);
    void readText(BufferReader& reader);
    void readSpecialExclaim(BufferReader& reader);
    void readSpecialQuestion(BufferReader& reader);
    void readAttribute(BufferReader& reader, bool requireEquals);

    // Makes `tag` the one that was read.
    void store(XmlTag& tag) const;
    // Sets the attributes that were read on `tag`.
    void storeAttributes(XmlTag& tag) const;

private:
    std::deque<std::string> mRewritten;                  // values that differ from the text
    std::unordered_map<std::string_view, size_t> mIndex; // attributes by name, of a tag with many

    void reset();
    void setValue(std::string_view attribute, std::string_view value);
    Attribute* find(std::string_view attribute);
    std::string_view readQuoted(BufferReader& reader);
    std::string_view rewritten(std::string_view text);
};

} // namespace zentrak::xml
