// Reads any bytes as a document. Whatever loads must be consistent and writable.

#include "fuzz.h"
#include "xml_parser.h"

#include <cstdint>
#include <string>

using namespace zentrak::xml;
using zentrak::fuzz::check;

namespace {

void checkTree(const XmlNode& node) {
    IteratorConst it = node.createIterator("");
    int count = 0;
    while (++it) {
        const XmlNode* child = node.getChildren(count++);
        check(child == it.operator->());
        check(child->parent == &node);
        check(child->type <= XmlTag::Text);
        check(child->closed || child->type == XmlTag::Normal);
        check(!child->closed || child->children.empty());
        for (const XmlTag::Argument& argument : child->arguments)
            check(child->getValue(argument.name) == argument.value); // names are unique
        checkTree(*child);
    }
    check(count == node.getNumChildren());
}

bool loads(XmlParser& parser, const char* text, size_t size) {
    try {
        parser.parse(text, int(size));
        return true;
    } catch (const zentrak::Exception&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    XmlParser parser;
    const bool loaded = loads(parser, reinterpret_cast<const char*>(data), size);
    checkTree(parser);
    if (loaded) {
        std::string first;
        parser.write(first, "\t");
        parser.clear();
        if (loads(parser, first.data(), first.size())) // not always: nothing is escaped
            checkTree(parser);
    }
    parser.clear();
    check(parser.children.empty() && parser.name.empty());
    return 0;
}
