#include "o3d_load.h"

#include "o3d_chunk.h"
#include "ztk_system.h"

namespace zentrak::o3d {

bool checkDepth(const chunklib::ReadBuffer& buffer) {
    if (buffer.depth() <= MAX_DEPTH)
        return true;
    ZTK_LOG("warning", "o3d", "Chunks nested deeper than %d, the rest is left out\n", int(MAX_DEPTH));
    return false;
}

std::string loadName(chunklib::ReadBuffer& buffer) {
    std::string name;
    while (buffer.checkBoundaries(1)) {
        char character = 0;
        buffer.loadType(&character, 1);
        if (character == '\0')
            break;
        name += character;
    }
    return name;
}

void loadFlag(chunklib::ReadBuffer& buffer, bool& flag) {
    if (!buffer.checkBoundaries(1))
        return;
    unsigned char byte = 0;
    buffer.loadType(&byte, 1);
    flag = byte == 1;
}

void writeFlag(chunklib::WriteBuffer& buffer, unsigned short id, bool flag) {
    const unsigned char byte = flag ? 1 : 0;
    buffer.openChunk(id);
    buffer.storeType(&byte, 1);
    buffer.closeChunk();
}

} // namespace zentrak::o3d
