// Comparison of maths values up to a tolerance, for EXPECT_TRUE.
#pragma once

#include "mb_matrix4x4col.h"

#include <cmath>
#include <gtest/gtest.h>

namespace zentrak::mathbase {

inline std::ostream& operator<<(std::ostream& os, const Vector2f& v) {
    return os << "(" << v.x << ", " << v.y << ")";
}

inline std::ostream& operator<<(std::ostream& os, const Vector3f& v) {
    return os << "(" << v.x << ", " << v.y << ", " << v.z << ")";
}

inline std::ostream& operator<<(std::ostream& os, const Vector4f& v) {
    return os << "(" << v.x << ", " << v.y << ", " << v.z << ", " << v.w << ")";
}

inline std::ostream& operator<<(std::ostream& os, const Quatf& q) {
    return os << "(" << q.w << "; " << q.x << ", " << q.y << ", " << q.z << ")";
}

inline std::ostream& operator<<(std::ostream& os, const Matrix4x4Col& m) {
    for (int r = 0; r < 4; ++r)
        os << "\n" << m.getRow(r);
    return os;
}

inline bool isNear(float a, float b, float tolerance) {
    return std::fabs(a - b) <= tolerance;
}

template <typename VALUE>
testing::AssertionResult near(const VALUE& a, const VALUE& b, float tolerance = 1e-6f) {
    const float* fa = reinterpret_cast<const float*>(&a);
    const float* fb = reinterpret_cast<const float*>(&b);
    for (size_t i = 0; i < sizeof(VALUE) / sizeof(float); ++i)
        if (!isNear(fa[i], fb[i], tolerance))
            return testing::AssertionFailure() << a << " is not " << b;
    return testing::AssertionSuccess();
}

} // namespace zentrak::mathbase
