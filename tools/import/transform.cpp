#include "import/transform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zentrak::importer {

namespace {

// A matrix whose columns are closer to orthogonal than this counts as orthogonal: files round their numbers.
constexpr double SQUARE = 1e-4;

double dot(const Vector& a, const Vector& b) {
    return a * b;
}

Vector column(const Matrix& m, unsigned i) {
    return Vector(m[0][i], m[1][i], m[2][i]);
}

Quaternion toQuaternion(const Vector (&columns)[3]) {
    const Matrix3 matrix(columns[0].x, columns[1].x, columns[2].x, columns[0].y, columns[1].y, columns[2].y,
                         columns[0].z, columns[1].z, columns[2].z);
    Quaternion q(matrix);
    q.Normalize();
    return q;
}

// Three unit vectors at right angles, right-handed, from vectors of which some may be zero.
void completeAxes(Vector (&axes)[3]) {
    const auto isZero = [](const Vector& v) { return v.SquareLength() < 0.25; };
    for (int i = 0; i < 3; ++i) {
        if (!isZero(axes[i]))
            continue;
        const Vector& next = axes[(i + 1) % 3];
        const Vector& last = axes[(i + 2) % 3];
        if (!isZero(next) && !isZero(last)) {
            axes[i] = next ^ last;
        } else if (!isZero(next) || !isZero(last)) {
            const Vector& given = isZero(next) ? last : next;
            const Vector other = fabs(given.x) < 0.8 ? Vector(1, 0, 0) : Vector(0, 1, 0);
            axes[i] = given ^ other;
            axes[i].Normalize();
        } else {
            axes[i] = Vector(1, 0, 0);
        }
    }
}

// The eigenvectors of a symmetric matrix, as columns, by Jacobi rotations.
void eigenvectors(double (&m)[3][3], Vector (&vectors)[3]) {
    double v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int sweep = 0; sweep < 60; ++sweep) {
        const int p = fabs(m[0][1]) >= fabs(m[0][2]) && fabs(m[0][1]) >= fabs(m[1][2]) ? 0
                      : fabs(m[0][2]) >= fabs(m[1][2])                                 ? 0
                                                                                       : 1;
        const int q = p == 0 && fabs(m[0][1]) >= fabs(m[0][2]) ? 1 : 2;
        if (m[p][q] == 0)
            break;
        const double angle = 0.5 * atan2(2 * m[p][q], m[q][q] - m[p][p]);
        const double c = cos(angle), s = sin(angle);
        for (auto* rows : {&m, &v})
            for (double(&row)[3] : *rows) {
                const double a = row[p], b = row[q];
                row[p] = c * a - s * b;
                row[q] = s * a + c * b;
            }
        for (int i = 0; i < 3; ++i) {
            const double a = m[p][i], b = m[q][i];
            m[p][i] = c * a - s * b;
            m[q][i] = s * a + c * b;
        }
    }
    for (int i = 0; i < 3; ++i)
        vectors[i] = Vector(v[0][i], v[1][i], v[2][i]);
}

// Any matrix is a rotation, a scale and another rotation.
void decomposeShear(const Vector (&columns)[3], Trs& result) {
    double square[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            square[i][j] = dot(columns[i], columns[j]);
    Vector right[3], left[3];
    eigenvectors(square, right);
    if (dot(right[0] ^ right[1], right[2]) < 0)
        right[0] = right[0] * -1.0;
    double scale[3];
    for (int i = 0; i < 3; ++i) {
        left[i] = columns[0] * right[i].x + columns[1] * right[i].y + columns[2] * right[i].z;
        scale[i] = left[i].Length();
    }
    const double largest = std::max({scale[0], scale[1], scale[2]});
    for (int i = 0; i < 3; ++i)
        left[i] = scale[i] > largest * 1e-9 ? left[i] / scale[i] : Vector();
    completeAxes(left);
    if (dot(left[0] ^ left[1], left[2]) < 0) {
        left[0] = left[0] * -1.0;
        scale[0] = -scale[0];
    }
    result.rotation = toQuaternion(left);
    result.scale = Vector(scale[0], scale[1], scale[2]);
    result.inner = toQuaternion(right);
    result.inner.Conjugate();
    result.sheared = true;
}

double unwrap(double angle, double near) {
    constexpr double turn = 2 * std::numbers::pi;
    return angle + turn * std::round((near - angle) / turn);
}

} // namespace

Space::Space(const Matrix3& axes, double scale)
    : mAxes(axes), mScale(scale), mSign(axes.Determinant() < 0 ? -1.0 : 1.0) {}

Matrix Space::matrix(const Matrix& m) const {
    Matrix3 back = mAxes;
    back.Transpose();
    const Matrix3 turned = mAxes * Matrix3(m) * back;
    Matrix result(turned);
    const Vector position = point(Vector(m.a4, m.b4, m.c4));
    result.a4 = position.x;
    result.b4 = position.y;
    result.c4 = position.z;
    return result;
}

Quaternion Space::rotation(const Quaternion& q) const {
    const Vector axis = mAxes * Vector(q.x, q.y, q.z) * mSign;
    return Quaternion(q.w, axis.x, axis.y, axis.z);
}

Vector Space::scale(const Vector& v) const {
    const Vector turned = mAxes * v;
    Vector result;
    for (unsigned row = 0; row < 3; ++row)
        result[row] = turned[row] * (mAxes[row][0] + mAxes[row][1] + mAxes[row][2]);
    return result;
}

bool isFinite(const Matrix& matrix) {
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            if (!std::isfinite(matrix[row][column]))
                return false;
    return true;
}

Trs decompose(const Matrix& matrix) {
    Trs result;
    if (!isFinite(matrix))
        return result;
    result.position = Vector(matrix.a4, matrix.b4, matrix.c4);
    const Vector columns[3] = {column(matrix, 0), column(matrix, 1), column(matrix, 2)};
    double scale[3];
    Vector axes[3];
    for (int i = 0; i < 3; ++i)
        scale[i] = columns[i].Length();
    const double largest = std::max({scale[0], scale[1], scale[2]});
    for (int i = 0; i < 3; ++i)
        axes[i] = scale[i] > largest * 1e-9 ? columns[i] / scale[i] : Vector();
    const double skew =
        std::max({fabs(dot(axes[0], axes[1])), fabs(dot(axes[1], axes[2])), fabs(dot(axes[2], axes[0]))});
    if (skew > SQUARE) {
        decomposeShear(columns, result);
        return result;
    }
    completeAxes(axes);
    if (dot(axes[0] ^ axes[1], axes[2]) < 0)
        for (int i = 0; i < 3; ++i) {
            axes[i] = axes[i] * -1.0;
            scale[i] = -scale[i];
        }
    result.rotation = toQuaternion(axes);
    result.scale = Vector(scale[0], scale[1], scale[2]);
    return result;
}

Matrix toMatrix(const Vector& position, const Quaternion& rotation, const Vector& scale) {
    // assimp's constructor from three parts would rotate before it scales.
    Matrix result(rotation.GetMatrix());
    for (unsigned row = 0; row < 3; ++row) {
        for (unsigned column = 0; column < 3; ++column)
            result[row][column] *= scale[column];
        result[row][3] = position[row];
    }
    return result;
}

Vector toAngles(const Quaternion& rotation, const Vector& near) {
    const Matrix3 m = rotation.GetMatrix();
    const double level = hypot(m.a1, m.c1); // cosine of the angle about z
    const double z = atan2(m.b1, level);
    Vector first, second;
    if (level < 1e-6) {
        // The rotations about y and x are about one axis: keep the one about y.
        const double sum = m.b1 > 0 ? atan2(m.c2, -m.a2) - near.y : atan2(m.c2, m.a2) + near.y;
        first = second = Vector(sum, near.y, z);
    } else {
        first = Vector(atan2(-m.b3, m.b2), atan2(-m.c1, m.a1), z);
        second = Vector(first.x + std::numbers::pi, first.y + std::numbers::pi, std::numbers::pi - z);
    }
    for (Vector* const angles : {&first, &second})
        for (unsigned i = 0; i < 3; ++i)
            (*angles)[i] = unwrap((*angles)[i], near[i]);
    return (first - near).SquareLength() <= (second - near).SquareLength() ? first : second;
}

Quaternion fromAngles(const Vector& angles) {
    const Quaternion x(Vector(1, 0, 0), angles.x), y(Vector(0, 1, 0), angles.y), z(Vector(0, 0, 1), angles.z);
    return y * z * x;
}

double angleBetween(const Quaternion& a, const Quaternion& b) {
    // From the vector part of the difference: an arc cosine loses small angles.
    Quaternion back = a;
    back.Conjugate();
    const Quaternion turn = back * b;
    return 2 * atan2(sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z), fabs(turn.w));
}

Quaternion mix(const Quaternion& a, const Quaternion& b, double share) {
    Quaternion result;
    Quaternion::Interpolate(result, a, b, share);
    result.Normalize();
    return result;
}

} // namespace zentrak::importer
