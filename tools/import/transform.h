// Converts transforms from a model file's space to the engine's: right-handed, y up, rotations as angles in
// the order YZX.
#pragma once

#include "import/model.h"

namespace zentrak::importer {

// From the file's space to the engine's.
class Space {
public:
    // `axes` takes the file's axes to x, y and z; each of its rows and columns has one 1 or -1.
    Space(const Matrix3& axes, double scale);

    Vector point(const Vector& v) const { return mAxes * v * mScale; }
    Vector direction(const Vector& v) const { return mAxes * v; }
    Matrix matrix(const Matrix& m) const;
    Quaternion rotation(const Quaternion& q) const;
    Vector scale(const Vector& v) const; // a node's
    bool mirrors() const { return mSign < 0; }

private:
    Matrix3 mAxes;
    double mScale;
    double mSign; // of the axes' determinant
};

struct Trs {
    Vector position;
    Quaternion rotation;
    Vector scale{1, 1, 1};
    Quaternion inner; // the rotation before the scale: identity unless the matrix shears
    bool sheared = false;
};

// matrix = position x rotation x scale x inner. A matrix with NaN or infinities is the identity.
Trs decompose(const Matrix& matrix);
bool isFinite(const Matrix& matrix);

Matrix toMatrix(const Vector& position, const Quaternion& rotation, const Vector& scale);

// The angles of a rotation, in radians; of all solutions the one nearest to `near`.
Vector toAngles(const Quaternion& rotation, const Vector& near);
Quaternion fromAngles(const Vector& angles);

// The angle of the rotation from one to the other, radians.
double angleBetween(const Quaternion& a, const Quaternion& b);

// Spherical, the shorter way.
Quaternion mix(const Quaternion& a, const Quaternion& b, double share);

} // namespace zentrak::importer
