#include "audiere_decodedsource.h"

#include <climits>
#include <cstdio>

namespace zentrak::audiere {

bool seekFile(File& file, int64_t offset, int whence) {
    const File::SeekMode mode = whence == SEEK_SET   ? File::BEGIN
                                : whence == SEEK_CUR ? File::CURRENT
                                                     : File::END;
    return offset >= INT_MIN && offset <= INT_MAX && file.seek(int(offset), mode);
}

} // namespace zentrak::audiere
