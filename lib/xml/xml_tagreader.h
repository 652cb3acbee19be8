// Reads one tag without copying: names and values are views of the text. The parser copies them once, into
// the tree.
#pragma once

#include "xml_tag.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zentrak::xml {

// All views are valid until the next read, as long as the text lives.
class TagReader {
public:
    struct Attribute {
        std::string_view name;
        std::string_view value;
    };

    XmlTag::Type type = XmlTag::Normal;
    bool closed = true;
    std::string_view name;
    std::vector<Attribute> attributes; // names are unique

    // Reads the next tag of any type and replaces the last one.
    void read(BufferReader& reader);

    // The parts of read(), which add to what was read; XmlTag says where the reader has to be.
    void readNormal(BufferReader& reader);
    void readComment(BufferReader& reader);
    void readText(BufferReader& reader);
    void readSpecialExclaim(BufferReader& reader);
    void readSpecialQuestion(BufferReader& reader);
    void readAttribute(BufferReader& reader, bool requireEquals);

    // Makes `tag` a copy of what was read.
    void store(XmlTag& tag) const;
    // Sets only the attributes on `tag`.
    void storeAttributes(XmlTag& tag) const;

private:
    std::deque<std::string> mRewritten;                  // values that differ from the text
    std::unordered_map<std::string_view, size_t> mIndex; // attributes by name, for a tag with many

    void reset();
    void setValue(std::string_view attribute, std::string_view value);
    Attribute* find(std::string_view attribute);
    std::string_view readQuoted(BufferReader& reader);
    std::string_view rewritten(std::string_view text);
};

} // namespace zentrak::xml
