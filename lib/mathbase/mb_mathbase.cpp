// The library is header-only. This compiles each header by itself and instantiates the templates.
#include "mb_assert.h"
#include "mb_box2.h"
#include "mb_euler.h"
#include "mb_matrix4x4col.h"
#include "mb_quat.h"
#include "mb_random.h"
#include "mb_rotationorder.h"
#include "mb_splinebase.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

namespace zentrak::mathbase {

template struct Vector3T<float>;
template class SplineBase<float, SplineBaseKey<float>>;

static_assert(sizeof(Vector2f) == 2 * sizeof(float));
static_assert(sizeof(Vector3f) == 3 * sizeof(float));
static_assert(sizeof(Vector4f) == 4 * sizeof(float));
static_assert(sizeof(Box2) == 4 * sizeof(float));
static_assert(sizeof(Quatf) == 4 * sizeof(float));
static_assert(sizeof(Matrix4x4Col) == 16 * sizeof(float));
static_assert(sizeof(SplineBaseKey<float>) == 4 * sizeof(float));

} // namespace zentrak::mathbase
