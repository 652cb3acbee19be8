// Everything here is in line. This source makes each header stand on its own, and instantiates the templates.

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

template struct zentrak::mathbase::Vector3T<float>;
template class zentrak::mathbase::SplineBase<float, zentrak::mathbase::SplineBaseKey<float>>;
