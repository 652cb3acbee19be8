// Rays against primitives: the first hit, its position, and whether anything is in the way.
//
// Directions are of unit length; distances along a ray are in the units of the scene. Nothing here allocates,
// and tracing changes no primitive.
#pragma once

#include "mb_vector3.h"

#include <vector>

namespace zentrak::trace {

using mathbase::Vector3f;

// The material of a surface. Users derive their own; the tracer only carries the pointer.
class Material {
public:
    virtual ~Material() {}
};

// The cheap result of a hit, enough to find out which of several is the nearest.
struct PreIntersection {
    float t = 0;         // distance along the ray
    Vector3f nor;        // the normal, not normalised
    bool inside = false; // the ray leaves the surface: nor dot direction >= 0
    float uvw[3] = {};   // texture coordinates; the first two are passed on
};

// The full result, made once for the hit that counts.
struct Intersection {
    bool inside = false;
    Material* material = nullptr; // not owned
    Vector3f position;
    Vector3f nor; // of unit length
    float t = 0;
    float u = 0, v = 0;
};

class Primitive {
public:
    virtual ~Primitive() {}

    // Fills in all of `i` from a hit on this primitive but the material, which stays as the caller set it.
    // Asserts that the hit's normal has a length.
    virtual void convertIntersection(const PreIntersection& pi, Intersection& i, const Vector3f& origin,
                                     const Vector3f& direction) const;
    // The nearest hit between the distances `tmin` and `tmax`, both included. On a miss `pi` is unchanged.
    virtual bool trace(PreIntersection& pi, const Vector3f& origin, const Vector3f& direction, float tmin,
                       float tmax) const = 0;
    // Whether there is any hit between the two distances.
    virtual bool traceShadow(const Vector3f& origin, const Vector3f& direction, float tmin, float tmax) const;
};

class PrimSphere : public Primitive {
public:
    Vector3f centre;
    float radius;
    Material* material; // not owned

    PrimSphere(const Vector3f& centre, float radius, Material* material);

    // As the base, and sets the material.
    void convertIntersection(const PreIntersection& pi, Intersection& i, const Vector3f& origin,
                             const Vector3f& direction) const override;
    bool trace(PreIntersection& pi, const Vector3f& origin, const Vector3f& direction, float tmin,
               float tmax) const override;
};

// A list of primitives that acts as one.
class PrimScene : public Primitive {
public:
    struct Instance {
        Primitive* primitive; // not owned
    };
    std::vector<Instance> instances;

    // The nearest hit of all; of two at the same distance the later one in the list.
    bool trace(PreIntersection& pi, const Vector3f& origin, const Vector3f& direction, float tmin,
               float tmax) const override;
    // The same, converted by the primitive that was hit. Without a hit `i` is unchanged. Asserts that every
    // primitive keeps to the bounds that it is given.
    virtual bool trace(Intersection& i, const Vector3f& origin, const Vector3f& direction, float tmin,
                       float tmax) const;
};

} // namespace zentrak::trace
