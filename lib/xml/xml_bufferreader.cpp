#include "xml_bufferreader.h"

#include "xml_chars.h"

namespace zentrak::xml {

void BufferReader::skipSpacesHere(int minimum) {
    const size_t start = pos;
    while (pos < size && isKind(data[pos], CHAR_SPACE)) {
        account(data[pos]);
        ++pos;
    }
    if (minimum > 0 && pos - start < size_t(minimum))
        throw atEnd() ? Exception("Eof before enough spaces were found") : Exception("Not enough spaces!");
}

} // namespace zentrak::xml
