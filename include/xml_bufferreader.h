// The reading state of the XML parser: a text in memory and the position in it, also as line and column.
#pragma once

#include "ztk_system.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zentrak::xml {

struct BufferReader {
    const char* data;     // not owned, need not be terminated
    size_t size;          // bytes
    size_t pos = 0;       // next byte
    int32_t line = 1;     // of the next byte
    int32_t tagLine = -1; // where the current tag read began: the end of the tag before it
    int32_t col = 1;      // of the next byte; a tab counts as four, a carriage return as none
    int32_t tagCol = -1;

    // A null text counts as an empty one.
    BufferReader(const char* text, size_t length) : data(text), size(text ? length : 0) {}

    bool atEnd() const { return pos >= size; }

    // What is still to be read.
    std::string_view rest() const {
        return atEnd() ? std::string_view() : std::string_view(data + pos, size - pos);
    }

    // Throws "EOF" at the end of the data.
    void requireMore() const {
        if (atEnd())
            throw Exception("EOF");
    }

    // The next byte; throws "EOF" where there is none.
    char peek() const {
        requireMore();
        return data[pos];
    }

    // Takes one byte; throws "EOF" where there is none.
    char consume() {
        const char c = peek();
        ++pos;
        account(c);
        return c;
    }

    // Moves line and column over the byte `c`.
    void account(char c) {
        if (c == '\n') {
            ++line;
            col = 1;
        } else if (c == '\t') {
            advanceColumn(4);
        } else if (c != '\r') {
            advanceColumn(1);
        }
    }

    // Takes `count` bytes, none of them a line end, a tab or a carriage return.
    void consumePlain(size_t count) {
        pos += count;
        advanceColumn(count);
    }

    // Takes all spaces, tabs and line ends from here. Throws "Not enough spaces!" or "Eof before enough
    // spaces were found" where there are less than `minimum`.
    void skipSpaces(int minimum) {
        if (minimum > 0 || atEnd() || static_cast<unsigned char>(data[pos]) <= ' ')
            skipSpacesHere(minimum);
    }

private:
    void skipSpacesHere(int minimum);

    // Wraps round on a line of more columns than fit.
    void advanceColumn(size_t count) { col = int32_t(uint32_t(col) + uint32_t(count)); }
};

} // namespace zentrak::xml
