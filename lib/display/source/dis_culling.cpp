#include "dis_culling.h"

namespace zentrak::display {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

// The cross product of the rows of x, y and w in four dimensions.
Vector4f eyeOf(const Matrix4x4Col& clip) {
    const auto row = [&](int r, int a, int b, int c) {
        return Vector3f(clip.mData[a * 4 + r], clip.mData[b * 4 + r], clip.mData[c * 4 + r]);
    };
    const auto minor = [&](int a, int b, int c) {
        return row(0, a, b, c).dot(row(1, a, b, c).cross(row(3, a, b, c)));
    };
    return Vector4f(minor(1, 2, 3), -minor(0, 2, 3), minor(0, 1, 3), -minor(0, 1, 2));
}

unsigned facesTowards(const Vector4f& eye, const Vector3f& centre, const Vector3f (&axes)[3], float side) {
    static constexpr Face LOWER[3] = {FACE_LEFT, FACE_BOTTOM, FACE_BACK};
    static constexpr Face UPPER[3] = {FACE_RIGHT, FACE_TOP, FACE_FRONT};
    const Vector3f toEye = (Vector3f(eye.x, eye.y, eye.z) - centre * eye.w) * side;
    unsigned faces = 0;
    for (int i = 0; i < 3; ++i) {
        const Vector3f normal = axes[(i + 1) % 3].cross(axes[(i + 2) % 3]);
        const float distance = normal.dot(toEye), reach = normal.dot(axes[i]) * eye.w * side;
        if (!(distance < reach))
            faces |= 1u << UPPER[i];
        if (!(-distance < reach))
            faces |= 1u << LOWER[i];
    }
    return faces;
}

} // namespace zentrak::display
