// What the chunk loaders and writers share.
#pragma once

#include "cl_readbuffer.h"
#include "cl_writebuffer.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace zentrak::o3d {

// May a node or a bone be nested as deep as the open chunk? Logs where it may not.
bool checkDepth(const chunklib::ReadBuffer& buffer);

// A name at the start of a chunk. Unlike loadValue() it stops silently where the chunk ends before the zero
// byte.
std::string loadName(chunklib::ReadBuffer& buffer);

// True when the byte is exactly 1; `flag` stays as it was where there is none.
void loadFlag(chunklib::ReadBuffer& buffer, bool& flag);
void writeFlag(chunklib::WriteBuffer& buffer, unsigned short id, bool flag);

// The size of a chunk that is really there: what it claims, or what the stream has left of it.
inline size_t presentSize(const chunklib::ReadBuffer& buffer) {
    return std::min(buffer.currentChunkSize(), buffer.remaining());
}

// Fills the list with what is left of the chunk, for elements that lie on file as they do in memory.
template <typename T>
void loadPlainList(chunklib::ReadBuffer& buffer, std::vector<T>& list) {
    static_assert(std::is_trivially_copyable_v<T>);
    const size_t count = presentSize(buffer) / sizeof(T);
    list.clear();
    list.resize(count);
    buffer.loadType(list.data(), count * sizeof(T));
}

} // namespace zentrak::o3d
