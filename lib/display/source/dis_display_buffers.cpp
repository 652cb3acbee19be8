// Drawing from the current buffers.
#include "dis_display.h"
#include "dis_glcheck.h"
#include "dis_ibo.h"
#include "dis_vbo.h"

#include <algorithm>

namespace zentrak::display {

// Clips `count` entries from `first` on to a buffer of `size` entries. A negative count is left to OpenGL to
// report.
static int countInside(int first, int count, int size) {
    return first < 0 || first >= size ? 0 : std::min(count, size - first);
}

void DisplayGL::draw(GLenum mode, int firstIndex, int numIndices, int firstVertex, int numVertices) {
    if (mCurrentIBO) {
        const GLenum indexType = GLenum(mCurrentIBO->getFormatGL());
        numIndices = countInside(firstIndex, numIndices, mCurrentIBO->getSize());
        if (firstIndex != -1 && numIndices != 0)
            GL_CALL(glDrawElements(mode, numIndices, indexType, mCurrentIBO->getPointerGL(firstIndex)));
        else if (firstIndex == -1 && mCurrentIBO->getSize() > 0)
            GL_CALL(glDrawElements(mode, mCurrentIBO->getSize(), indexType, mCurrentIBO->getPointerGL(0)));
    } else if (firstIndex != -1) {
        return; // there are no indices
    } else if (firstVertex != -1) {
        if (mCurrentVBO)
            numVertices = countInside(firstVertex, numVertices, mCurrentVBO->getSize());
        if (numVertices != 0)
            GL_CALL(glDrawArrays(mode, firstVertex, numVertices));
    } else if (mCurrentVBO && mCurrentVBO->getSize() > 0) {
        GL_CALL(glDrawArrays(mode, 0, mCurrentVBO->getSize()));
    }
}

} // namespace zentrak::display
