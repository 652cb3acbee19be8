// Helpers of the chunk loaders and writers.
#pragma once

#include "cl_readbuffer.h"
#include "cl_writebuffer.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace zentrak::o3d {

// May a node or a bone be nested as deep as the open chunk? Logs if not.
bool checkDepth(const chunklib::ReadBuffer& buffer);

// Reads a name at the start of a chunk. Unlike loadValue() it stops silently if the chunk ends before the
// zero byte.
std::string loadName(chunklib::ReadBuffer& buffer);

// Sets `flag` to whether the byte is exactly 1; leaves it alone if there is no byte.
void loadFlag(chunklib::ReadBuffer& buffer, bool& flag);
void writeFlag(chunklib::WriteBuffer& buffer, unsigned short id, bool flag);

// The bytes of the chunk actually present: its size, limited to what is left of the stream.
inline size_t presentSize(const chunklib::ReadBuffer& buffer) {
    return std::min(buffer.currentChunkSize(), buffer.remaining());
}

// Fills the list with the rest of the chunk, for elements whose file layout is that in memory.
template <typename T>
void loadPlainList(chunklib::ReadBuffer& buffer, std::vector<T>& list) {
    static_assert(std::is_trivially_copyable_v<T>);
    const size_t count = presentSize(buffer) / sizeof(T);
    list.clear();
    list.resize(count);
    buffer.loadType(list.data(), count * sizeof(T));
}

} // namespace zentrak::o3d
