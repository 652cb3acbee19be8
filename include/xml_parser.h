// A document: the root element with its children, and the prolog. This header includes the whole library.
#pragma once

#include "xml_bufferreader.h"
#include "xml_iterator.h"
#include "xml_node.h"
#include "xml_tag.h"

#include <ostream>
#include <string>

namespace zentrak::xml {

class XmlParser : public XmlNode {
public:
    XmlTag header; // <?xml ...?>; its name is empty when the document had none

    XmlParser();

    // Read a document into this empty parser. They throw Exception with the position in the text, as in
    // "(error at line 3, col 7); EOF (when reading tag at 2:9)"; the tree then holds what was read so far.
    // Anything after the root's end tag is ignored. Depth is limited only by memory.
    void parse(const char* text, int length);
    void parse(const std::string& text);
    // The same without the position in the message.
    void parse(BufferReader& reader);
    // Reads the children of the node that `it` walks, up to that node's end tag. `top` is unused.
    void parseRecurse(BufferReader& reader, Iterator& it, Iterator& top);

    // Write prolog and tree, each level one `indent` further in.
    void write(std::ostream& os, const std::string& indent) const;
    void write(std::string& out, const std::string& indent) const;
    // Writes what `it` walks, `depth` times indented, and the end tag of the node above.
    void writeRecurse(std::ostream& os, IteratorConst& it, const std::string& indent, int depth) const;
};

} // namespace zentrak::xml
