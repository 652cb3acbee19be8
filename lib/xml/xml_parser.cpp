#include "xml_parser.h"

#include "xml_tagreader.h"

#include <memory>
#include <sstream>
#include <unordered_map>
#include <utility>

namespace zentrak::xml {

namespace {

bool endsNode(const TagReader& tag, const XmlNode& node) {
    return tag.closed && tag.attributes.empty() && tag.name == node.name;
}

void parseWithPlace(XmlParser& parser, BufferReader reader) {
    try {
        parser.parse(reader);
    } catch (const Exception& exception) {
        throw Exception("(error at line %d, col %d); %s (when reading tag at %d:%d)", reader.line, reader.col,
                        exception.what(), reader.tagLine, reader.tagCol);
    }
}

// A later prolog replaces the values of an earlier one. There may be many, so their attributes are indexed by
// name.
void addToProlog(XmlTag& header, std::unordered_map<std::string, size_t>& places, const XmlTag& prolog) {
    header.type = prolog.type;
    header.name = prolog.name;
    for (const XmlTag::Argument& argument : prolog.arguments) {
        const auto [place, isNew] = places.try_emplace(argument.name, header.arguments.size());
        if (isNew)
            header.arguments.push_back(argument);
        else
            header.arguments[place->second].value = argument.value;
    }
}

void writeIndent(std::ostream& os, const std::string& indent, int depth) {
    for (int i = 0; i < depth && !indent.empty(); ++i)
        os.write(indent.data(), static_cast<std::streamsize>(indent.size()));
}

void writeEndTag(std::ostream& os, const XmlNode& node, const std::string& indent, int depth) {
    writeIndent(os, indent, depth);
    os << "</" << node.name << ">\n";
}

} // namespace

XmlParser::XmlParser() : XmlNode(nullptr) {}

void XmlParser::parse(const char* text, int length) {
    parseWithPlace(*this, BufferReader(text, length > 0 ? size_t(length) : 0));
}

void XmlParser::parse(const std::string& text) {
    parseWithPlace(*this, BufferReader(text.data(), text.size()));
}

void XmlParser::parse(BufferReader& reader) {
    if (!name.empty())
        throw Exception("Parser has already parsed a xml-file, use clear() first!");
    header = XmlTag();
    std::unordered_map<std::string, size_t> places; // of the prolog's attributes
    XmlTag tag;
    for (;;) {
        tag.parse(reader);
        if (tag.type == Normal)
            break;
        if (tag.type == SpecialQuestion && tag.name == "xml")
            addToProlog(header, places, tag);
    }
    if (tag.closed)
        throw Exception("Root tag is closed!");
    setTag(tag);
    Iterator it = createIterator(emptyString);
    parseRecurse(reader, it, it);
}

// Walks the tree through its own pointers: recursion would overflow the stack on deep nesting.
void XmlParser::parseRecurse(BufferReader& reader, Iterator& it, Iterator&) {
    XmlNode* const first = it.getRoot();
    XmlNode* node = first;
    TagReader tag;
    for (;;) {
        tag.read(reader);
        if (endsNode(tag, *node)) {
            if (node->children.empty())
                node->closed = true;
            if (node == first)
                return;
            node = node->parent;
            continue;
        }
        auto owner = std::make_unique<XmlNode>(nullptr);
        tag.store(*owner);
        XmlNode* child =
            node == first ? it.adoptChild(std::move(owner)) : node->adoptChild(std::move(owner), -1);
        if (!tag.closed)
            node = child;
    }
}

void XmlParser::write(std::ostream& os, const std::string& indent) const {
    if (header.name == "xml")
        os << header << '\n';
    XmlTag::write(os, false);
    IteratorConst it = createIterator(emptyString);
    writeRecurse(os, it, indent, 1);
}

void XmlParser::write(std::string& out, const std::string& indent) const {
    std::ostringstream os;
    os.exceptions(std::ios::badbit); // without memory it would drop what follows
    write(os, indent);
    out = os.str();
}

void XmlParser::writeRecurse(std::ostream& os, IteratorConst& it, const std::string& indent,
                             int depth) const {
    struct Level {
        const XmlNode* node;
        size_t next;
    };
    std::vector<Level> levels; // the open nodes below the one that `it` walks
    for (;;) {
        const XmlNode* child = nullptr;
        if (levels.empty()) {
            if (!++it)
                break;
            child = static_cast<const XmlNode*>(it.operator->());
        } else if (levels.back().next < levels.back().node->children.size()) {
            child = levels.back().node->children[levels.back().next++];
        } else {
            writeEndTag(os, *levels.back().node, indent, depth - 1 + int(levels.size()));
            levels.pop_back();
            continue;
        }
        writeIndent(os, indent, depth + int(levels.size()));
        os << child->getTag();
        if (!child->closed)
            levels.push_back({child, 0});
    }
    writeEndTag(os, *it.getRoot(), indent, depth - 1);
}

} // namespace zentrak::xml
