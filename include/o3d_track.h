// Values that change over time: one float with keys and Bezier handles, and fixed groups of them.
#pragma once

#include "mb_euler.h"
#include "mb_quat.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <vector>

namespace zentrak::chunklib {
class ReadBuffer;
class WriteBuffer;
} // namespace zentrak::chunklib

namespace zentrak::o3d {

// The real cube root.
double Sqrt3d(double value);

// One float over time. Times are in the unit of the file's keys. A track is read by one thread at a time:
// sampling moves its search index.
class TrackBlenderFloat {
public:
    enum Interpolation { // any other value acts as CONSTANT
        INTERPOLATION_CONSTANT = 0,
        INTERPOLATION_LINEAR = 1,
        INTERPOLATION_BEZIER = 2
    };

    enum Extrapolation { // outside the keys' span; with any other value the nearest segment continues
        EXTRAPOLATION_CONSTANT = 0,
        EXTRAPOLATION_LINEAR = 1,
        EXTRAPOLATION_CYCLIC = 2,
        EXTRAPOLATION_CYCLIC_OFFSET = 3 // each repetition rises by the last value minus the first
    };

    struct Key {
        float mHandleInTime = 0.0f;
        float mHandleInValue = 0.0f;
        float mTime = 0.0f;
        float mValue = 0.0f;
        float mHandleOutTime = 0.0f;
        float mHandleOutValue = 0.0f;
    };

    explicit TrackBlenderFloat(float value = 0.0f) : mValue(value) {}

    // No keys, both modes 0, and this default.
    void clear(float value);

    // The value at `time`. Prints a line to standard output where the keys do not cover the time that they
    // should, and where the handles fold the time back; it still returns a value.
    float getValue(float time) const;

    // Whether the value is constant. One key with another extrapolation than CONSTANT counts as moving.
    bool isStatic() const { return mKeys.empty() || (mKeys.size() == 1 && mExtrapolation == 0); }
    // Time of the last key, 0 without keys.
    float getLength() const { return mKeys.empty() ? 0.0f : mKeys.back().mTime; }

    // The payload of a key list chunk that is open. Bezier handles that reach past the span between their
    // keys are shortened.
    void loadKeys(chunklib::ReadBuffer& buffer);
    // A key list chunk under `id`; nothing at all without keys.
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;

    // The parameters from 0 to 1 at which the Bezier time curve from `a` to `b` is at `time`. `result` has
    // room for three; the number of those found comes back.
    int solveForTime(const Key& a, const Key& b, float time, float* result) const;

    float mValue; // where there are no keys
    int mInterpolation = INTERPOLATION_CONSTANT;
    int mExtrapolation = EXTRAPOLATION_CONSTANT;
    std::vector<Key> mKeys;  // ascending in time
    mutable int mIndex = -1; // of the segment found last

private:
    void correctHandles();
    size_t findSegment(float time) const;
};

// The groups. loadChunk() reads the children of the track chunk that is open, ignoring those it does not
// know; writeChunk() writes the whole chunk under `id`.

struct TrackFloat {
    TrackBlenderFloat mX;

    explicit TrackFloat(float value = 0.0f) : mX(value) {}
    void clear(float value) { mX.clear(value); }
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;
    bool isStatic() const { return mX.isStatic(); }
    float getLength() const { return mX.getLength(); }
    float getValue(float time) const { return mX.getValue(time); }
};

struct TrackVector3f {
    TrackBlenderFloat mX;
    TrackBlenderFloat mY;
    TrackBlenderFloat mZ;

    explicit TrackVector3f(float value = 0.0f) : mX(value), mY(value), mZ(value) {}
    void clear(float value); // the same for all three
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;
    bool isStatic() const;
    float getLength() const;
    mathbase::Vector3f getValue(float time) const;
};

// Angles in radians.
struct TrackEulerf {
    TrackBlenderFloat mX;
    TrackBlenderFloat mY;
    TrackBlenderFloat mZ;
    mathbase::RotationOrder mOrder; // no chunk sets it

    TrackEulerf();
    void clear(); // angles 0, order YZX
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;
    bool isStatic() const;
    float getLength() const;
    mathbase::Eulerf getValue(float time) const;
};

struct TrackColor4f {
    TrackBlenderFloat mR;
    TrackBlenderFloat mG;
    TrackBlenderFloat mB;
    TrackBlenderFloat mA;

    explicit TrackColor4f(float value = 0.0f) : mR(value), mG(value), mB(value), mA(value) {}
    void clear(float value); // the same for all four
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;
    bool isStatic() const;
    float getLength() const;
    mathbase::Vector4f getValue(float time) const; // red, green, blue, alpha
};

struct TrackQuatf {
    TrackBlenderFloat mW{1.0f};
    TrackBlenderFloat mX;
    TrackBlenderFloat mY;
    TrackBlenderFloat mZ;

    void clear(); // identity
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const;
    bool isStatic() const;
    float getLength() const;
    mathbase::Quatf getValue(float time) const; // as sampled, not normalised
};

} // namespace zentrak::o3d
