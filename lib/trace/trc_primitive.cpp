#include "trc_primitive.h"

#include <cassert>
#include <cmath>

namespace zentrak::trace {

void Primitive::convertIntersection(const PreIntersection& pi, Intersection& i, const Vector3f& origin,
                                    const Vector3f& direction) const {
    i.t = pi.t;
    i.nor = pi.nor;
    i.nor.normalize();
    i.position = origin + direction * pi.t;
    i.inside = pi.inside;
    i.u = pi.uvw[0];
    i.v = pi.uvw[1];
    assert(fabs(1.0-i.nor.length2())<0.001);
}

bool Primitive::traceShadow(const Vector3f& origin, const Vector3f& direction, float tmin, float tmax) const {
    PreIntersection pi;
    return trace(pi, origin, direction, tmin, tmax);
}

PrimSphere::PrimSphere(const Vector3f& centre_, float radius_, Material* material_)
    : centre(centre_), radius(radius_), material(material_) {}

void PrimSphere::convertIntersection(const PreIntersection& pi, Intersection& i, const Vector3f& origin,
                                     const Vector3f& direction) const {
    Primitive::convertIntersection(pi, i, origin, direction);
    i.material = material;
}

bool PrimSphere::trace(PreIntersection& pi, const Vector3f& origin, const Vector3f& direction, float tmin,
                       float tmax) const {
    const Vector3f oc = origin - centre;
    const float b = oc.dot(direction);
    const float c = oc.dot(oc) - radius * radius;
    if (c > 0 && b > 0)
        return false; // outside and pointing away
    const float discriminant = b * b - c;
    if (!(discriminant >= 0))
        return false;

    const double s = sqrt(double(discriminant));
    float t = float(-b - s);
    if (!(t >= tmin && t <= tmax)) {
        t = float(s - b);
        if (!(t >= tmin && t <= tmax))
            return false;
    }
    pi.t = t;
    pi.nor = origin + direction * t - centre;
    pi.uvw[0] = pi.uvw[1] = pi.uvw[2] = 0;
    pi.inside = pi.nor.dot(direction) >= 0;
    return true;
}

bool PrimScene::trace(PreIntersection& pi, const Vector3f& origin, const Vector3f& direction, float tmin,
                      float tmax) const {
    bool hit = false;
    for (const Instance& instance : instances) {
        if (instance.primitive->trace(pi, origin, direction, tmin, tmax)) {
            tmax = pi.t;
            hit = true;
        }
    }
    return hit;
}

bool PrimScene::trace(Intersection& i, const Vector3f& origin, const Vector3f& direction, float tmin,
                      float tmax) const {
    float tm = tmax;
    const Primitive* best = nullptr;
    PreIntersection pi;
    for (const Instance& instance : instances) {
        if (instance.primitive->trace(pi, origin, direction, tmin, tm)) {
            assert(pi.t>=tmin);
            assert(pi.t<=tmax);
            assert(pi.t<=tm);
            best = instance.primitive;
            tm = pi.t;
        }
    }
    if (best == nullptr)
        return false;
    best->convertIntersection(pi, i, origin, direction);
    return true;
}

} // namespace zentrak::trace
