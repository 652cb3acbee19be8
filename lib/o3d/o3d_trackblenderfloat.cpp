#include "o3d_load.h"
#include "o3d_track.h"

#include <cmath>
#include <cstdio>

namespace zentrak::o3d {

double Sqrt3d(double value) {
    if (value == 0.0)
        return 0.0;
    if (value > 0.0)
        return exp(log(value) / 3.0);
    return -exp(log(-value) / 3.0);
}

void TrackBlenderFloat::clear(float value) {
    mValue = value;
    mInterpolation = INTERPOLATION_CONSTANT;
    mExtrapolation = EXTRAPOLATION_CONSTANT;
    mKeys.clear();
    mIndex = -1;
}

void TrackBlenderFloat::loadKeys(chunklib::ReadBuffer& buffer) {
    static_assert(sizeof(Key) == 24);
    unsigned char interpolation = static_cast<unsigned char>(mInterpolation);
    unsigned char extrapolation = static_cast<unsigned char>(mExtrapolation);
    buffer.loadType(&interpolation, 1);
    buffer.loadType(&extrapolation, 1);
    mInterpolation = interpolation;
    mExtrapolation = extrapolation;

    loadPlainList(buffer, mKeys);
    if (mInterpolation == INTERPOLATION_BEZIER)
        correctHandles();
}

// Where the handles of two neighbouring keys together exceed the span between them, shortens both in
// proportion, keeping their direction, so that the curve stays a function of time.
void TrackBlenderFloat::correctHandles() {
    for (size_t i = 1; i < mKeys.size(); ++i) {
        Key& left = mKeys[i - 1];
        Key& right = mKeys[i];
        const float a = left.mTime - left.mHandleOutTime;
        const float b = right.mTime - right.mHandleInTime;
        const float span = right.mTime - left.mTime;
        const float sum = fabsf(a) + fabsf(b);
        if (sum == 0.0f || !(sum > span))
            continue;
        const float f = span / sum;
        left.mHandleOutTime = left.mTime - a * f;
        left.mHandleOutValue = left.mValue - (left.mValue - left.mHandleOutValue) * f;
        right.mHandleInTime = right.mTime - b * f;
        right.mHandleInValue = right.mValue - (right.mValue - right.mHandleInValue) * f;
    }
}

void TrackBlenderFloat::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    if (mKeys.empty())
        return;
    const unsigned char interpolation = static_cast<unsigned char>(mInterpolation);
    const unsigned char extrapolation = static_cast<unsigned char>(mExtrapolation);
    buffer.openChunk(id);
    buffer.storeType(&interpolation, 1);
    buffer.storeType(&extrapolation, 1);
    buffer.storeType(mKeys.data(), mKeys.size() * sizeof(Key));
    buffer.closeChunk();
}

// The number of whole spans from the first key to `time`; 0 if no int can hold it.
static int countSpans(float time, float first, float span) {
    const float spans = floorf((time - first) / span);
    return spans >= -2147483648.0f && spans < 2147483648.0f ? int(spans) : 0;
}

float TrackBlenderFloat::getValue(float time) const {
    const size_t count = mKeys.size();
    if (count == 0)
        return mValue;

    const Key& first = mKeys.front();
    const Key& last = mKeys.back();
    const float span = last.mTime - first.mTime;
    float offset = 0.0f;

    const bool before = time < first.mTime;
    if (before || time >= last.mTime) {
        switch (mExtrapolation) {
        case EXTRAPOLATION_CONSTANT:
            return before ? first.mValue : last.mValue;
        case EXTRAPOLATION_LINEAR:
            // Mixes the key's time, not its value, with the handle's value: files are made for that.
            if (before) {
                if (mInterpolation == INTERPOLATION_CONSTANT)
                    return first.mValue;
                const float s = (time - first.mTime) / (first.mHandleInTime - first.mTime);
                return (1.0f - s) * first.mTime + s * first.mHandleInValue;
            } else {
                if (mInterpolation == INTERPOLATION_CONSTANT)
                    return last.mValue;
                const float s = (time - last.mTime) / (last.mHandleOutTime - last.mTime);
                return (1.0f - s) * last.mTime + s * last.mHandleOutValue;
            }
        case EXTRAPOLATION_CYCLIC: {
            if (count == 1)
                return first.mValue;
            const double start = first.mTime;
            const double cycle = start + fmod(double(time) - start, double(span));
            time = float(before ? double(span) + cycle : cycle);
            break;
        }
        case EXTRAPOLATION_CYCLIC_OFFSET: {
            if (count == 1)
                return first.mValue;
            const int k = countSpans(time, first.mTime, span);
            offset = (last.mValue - first.mValue) * float(k);
            time = time - span * float(k);
            break;
        }
        default:
            break;
        }
    }
    if (count == 1)
        return first.mValue; // no segment to extrapolate

    const size_t segment = findSegment(time);
    const Key& a = mKeys[segment];
    const Key& b = mKeys[segment + 1];
    if (time < a.mTime || time >= b.mTime)
        printf("error (%f,%f),%f!\n", a.mTime, b.mTime, time);

    switch (mInterpolation) {
    case INTERPOLATION_BEZIER: {
        float roots[3] = {};
        if (solveForTime(a, b, time, roots) == 0) {
            printf("error, solveForTime returned zero\n");
            return offset + a.mValue;
        }
        const float u = roots[0];
        const float v = 1.0f - u;
        return v * v * v * a.mValue + 3.0f * u * v * v * a.mHandleOutValue +
               3.0f * u * u * v * b.mHandleInValue + u * u * u * b.mValue + offset;
    }
    case INTERPOLATION_LINEAR: {
        const float s = (time - a.mTime) / (b.mTime - a.mTime);
        return (1.0f - s) * a.mValue + s * b.mValue + offset;
    }
    default:
        return offset + a.mValue;
    }
}

// The left key of the segment that holds `time`, of at least two keys; outside all segments, the nearest one.
size_t TrackBlenderFloat::findSegment(float time) const {
    const int count = int(mKeys.size());
    if (count == 2) {
        mIndex = 0;
        return 0;
    }

    // Try the segment of the last call. The comparisons are deliberately the wrong way round: on ascending
    // keys neither holds, and the search below does the work.
    if (mIndex >= 0) {
        const int c = mIndex;
        if (c + 1 < count && mKeys[c].mTime >= time && time > mKeys[c + 1].mTime)
            return size_t(c);
        if (c + 2 < count && mKeys[c + 1].mTime >= time && time > mKeys[c + 2].mTime) {
            mIndex = c + 1;
            return size_t(mIndex);
        }
        mIndex = -1;
    }

    int lo = 0;
    int hi = count - 1;
    int mid = 0;
    while (lo <= hi) {
        mid = (lo + hi) / 2;
        mIndex = mid;
        if (mKeys[mid].mTime > time)
            hi = mid - 1;
        else if (mid + 1 < count && time < mKeys[mid + 1].mTime)
            break;
        else
            lo = mid + 1;
    }
    return size_t(std::min(mid, count - 2));
}

// Does the candidate count as a root? Slightly outside 0 to 1 does.
static bool isRoot(float candidate) {
    const double value = candidate;
    return value >= -1e-10 && value <= 1.000001;
}

int TrackBlenderFloat::solveForTime(const Key& a, const Key& b, float time, float* result) const {
    const float q0 = a.mTime;
    const float q1 = a.mHandleOutTime;
    const float q2 = b.mHandleInTime;
    const float q3 = b.mTime;

    // Single precision up to here, double from here on.
    const double c0 = q0 - time;
    const double c1 = 3.0f * (q1 - q0);
    const double c2 = 3.0f * (q0 - 2.0f * q1 + q2);
    const double c3 = q3 - q0 + 3.0f * (q1 - q2);

    int count = 0;
    const auto add = [&](double candidate) {
        result[count] = float(candidate);
        if (isRoot(result[count]))
            ++count;
    };

    if (c3 == 0.0) {
        if (c2 == 0.0) {
            if (c1 == 0.0) {
                if (c0 != 0.0)
                    return 0;
                result[0] = 0.0f;
                return 1;
            }
            add(-c0 / c1);
            return count;
        }
        const double discriminant = c1 * c1 - 4.0 * c0 * c2;
        if (discriminant > 0.0) {
            const double root = sqrt(discriminant);
            add((-c1 - root) / (2.0 * c2));
            add((root - c1) / (2.0 * c2));
        } else if (discriminant == 0.0) {
            add(c1 / (-2.0 * c2));
        }
        return count;
    }

    const double third = (c2 / c3) / 3.0;
    const double slope = c1 / c3;
    const double p = slope / 3.0 - third * third;
    const double p3 = p * p * p;
    const double q = (2.0 * third * third * third - slope * third + c0 / c3) / 2.0;
    const double discriminant = q * q + p3;
    if (discriminant > 0.0) {
        const double root = sqrt(discriminant);
        add(Sqrt3d(root - q) + Sqrt3d(-q - root) - third);
    } else if (discriminant == 0.0) {
        const double w = Sqrt3d(-q);
        add(2.0 * w - third);
        add(-w - third);
    } else if (discriminant < 0.0) {
        const double phi = acos(-q / sqrt(-p3));
        const double m = sqrt(-p);
        const double c = cos(phi / 3.0);
        const double s = sqrt(3.0 - 3.0 * c * c);
        add(2.0 * m * c - third);
        add(-m * (c + s) - third);
        add(-m * (c - s) - third);
    }
    return count;
}

} // namespace zentrak::o3d
