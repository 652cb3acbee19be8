// Reads any bytes as a file for the checkers, which know the line of every element.

#include "check/document.h"
#include "fuzz.h"
#include "ztk_system.h"

using namespace zentrak;

namespace {

void checkLines(const check::Document& document, const xml::XmlNode& node, int lines) {
    for (const xml::XmlNode* child : node.children) {
        fuzz::check(document.line(*child) >= 1 && document.line(*child) <= lines);
        checkLines(document, *child, lines);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        xml::XmlParser().parse(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const Exception&) {
        return 0; // the checkers print a line for it
    }
    const fuzz::InFolder folder;
    fuzz::write("file.xml", data, size);
    check::Document document;
    fuzz::check(document.read("file.xml"));
    int lines = 1;
    for (size_t i = 0; i < size; ++i)
        lines += data[i] == '\n';
    checkLines(document, document.root(), lines);
    return 0;
}
