// The keyed curve behind every animated value of the timeline: keys sorted by time, with tangents and value
// bounds kept up to date, and its value at any time.
#pragma once

#include "ztk_system.h"

#include <string>
#include <vector>

namespace zentrak::mathbase {

template <class VALUETYPE>
struct SplineBaseKey {
    float     time = 0;
    VALUETYPE value = 0;
    VALUETYPE tangentIn = 0; // stored negated: the value in the direction of the previous key
    VALUETYPE tangentOut = 0;
};

template <class VALUETYPE, class KEYTYPE>
class SplineBase {
public:
    // What a search finds besides the index of a segment.
    enum Outcome : int { BEFORE = -1, AFTER = -2, NO_KEY = -3 };

    int                  mCurrent = -1; // what the last search found; -1 for none
    VALUETYPE            mMin = 0;      // of a smooth curve the lesser and the greater value of all keys; of
    VALUETYPE            mMax = 0;      // another both the first key's value
    int                  mMode = 2;     // 0 square, 1 linear, 2 smooth
    std::vector<KEYTYPE> mKeys;         // sorted by time, ascending
    bool                 mAutoTangents = true; // tangents are recomputed at each change

    int getNumKeys() const { return int(mKeys.size()); }

    // Inserts, behind a key of the same time, and gives the new key's index.
    int  addKey(const KEYTYPE& key);
    void removeKey(int index); // asserts "index>=0 && index<(int)mKeys.size()"

    // Sets the bounds, and with mAutoTangents in mode 2 all tangents. `index` is only used where there is one
    // key, and names it.
    void updateTangents(int index, int, int);

    // The curve at `time`: 0 without keys, constant before the first and after the last key.
    VALUETYPE evaluate(float time);
    VALUETYPE evaluate(float time) const { return valueAt(time, search(time)); }

    // "square", "linear", "smooth", or "unknown".
    static std::string getModeName(int mode) {
        return mode == 0 ? "square" : mode == 1 ? "linear" : mode == 2 ? "smooth" : "unknown";
    }

private:
    int       search(float time) const;
    VALUETYPE valueAt(float time, int segment) const;
};

// The segment that `time` lies in, by the index of the key at its left, or an Outcome. A time that is no
// number may end anywhere inside.
template <class VALUETYPE, class KEYTYPE>
int SplineBase<VALUETYPE, KEYTYPE>::search(float time) const {
    const int n = getNumKeys();
    if (n == 0) {
        return NO_KEY;
    }
    if (time < mKeys[0].time) {
        return BEFORE;
    }
    if (n == 1 || time > mKeys[size_t(n - 1)].time) {
        return AFTER;
    }
    if (n == 2) {
        return 0;
    }
    int lo = 0, hi = n - 1, mid = 0;
    while (lo <= hi) {
        mid = (lo + hi) / 2;
        if (mKeys[size_t(mid)].time > time) {
            hi = mid - 1;
        } else if (mid + 1 < n && time < mKeys[size_t(mid + 1)].time) {
            break;
        } else {
            lo = mid + 1;
        }
    }
    return mid;
}

template <class VALUETYPE, class KEYTYPE>
VALUETYPE SplineBase<VALUETYPE, KEYTYPE>::valueAt(float time, int segment) const {
    if (segment == NO_KEY) {
        return 0;
    }
    if (segment == BEFORE) {
        return mKeys.front().value;
    }
    if (segment == AFTER || segment + 1 >= getNumKeys()) {
        return mKeys.back().value;
    }
    const KEYTYPE& a = mKeys[size_t(segment)];
    const KEYTYPE& b = mKeys[size_t(segment) + 1];
    if (mMode == 0) {
        return time >= b.time ? b.value : a.value; // a key's own time is its own
    }
    const float u = (time - a.time) / (b.time - a.time);
    if (mMode == 1) {
        return (1 - u) * a.value + u * b.value;
    }
    // Cubic Hermite; the tangent at b is -tangentIn.
    const VALUETYPE d = b.value - a.value, m = a.tangentOut, w = b.tangentIn;
    const float     u2 = u * u, u3 = u2 * u;
    return a.value + m * u + (3 * d - 2 * m + w) * u2 + (m - 2 * d - w) * u3;
}

template <class VALUETYPE, class KEYTYPE>
VALUETYPE SplineBase<VALUETYPE, KEYTYPE>::evaluate(float time) {
    mCurrent = search(time);
    return valueAt(time, mCurrent);
}

template <class VALUETYPE, class KEYTYPE>
int SplineBase<VALUETYPE, KEYTYPE>::addKey(const KEYTYPE& key) {
    const int found = search(key.time);
    mCurrent = -1;
    if (mKeys.empty()) {
        mMin = mMax = key.value;
    }
    const int index = found == BEFORE ? 0 : found < 0 ? getNumKeys() : found + 1;
    mKeys.insert(mKeys.begin() + index, key);
    updateTangents(index, index, index);
    return index;
}

template <class VALUETYPE, class KEYTYPE>
void SplineBase<VALUETYPE, KEYTYPE>::removeKey(int index) {
    ZTK_ASSERT_AT(index >= 0 && index < getNumKeys(), "index>=0 && index<(int)mKeys.size()", "mb_splinebase",
                  165);
    mKeys.erase(mKeys.begin() + index);
    if (mKeys.empty()) {
        return;
    }
    const int named = index == getNumKeys() ? index - 1 : index;
    updateTangents(named, named, named);
    mCurrent = -1;
}

// The formulas are as they are meant to be: a middle key pairs each difference with the time span of the
// other side, and the end keys multiply by theirs. They decide the curve's shape.
template <class VALUETYPE, class KEYTYPE>
void SplineBase<VALUETYPE, KEYTYPE>::updateTangents(int index, int, int) {
    const size_t n = mKeys.size();
    if (n == 0) {
        return;
    }
    mMin = mMax = mKeys[0].value;
    if (!mAutoTangents || mMode != 2) {
        return;
    }
    if (n == 1) {
        if (index == 0) {
            mKeys[0].tangentIn = mKeys[0].tangentOut = 0;
        }
        return;
    }
    for (size_t i = 0; i < n; ++i) {
        KEYTYPE& k = mKeys[i];
        mMin = k.value < mMin ? k.value : mMin;
        mMax = k.value > mMax ? k.value : mMax;
        if (i == 0) {
            k.tangentIn = 0;
            k.tangentOut = (mKeys[1].value - k.value) * (mKeys[1].time - k.time);
        } else if (i == n - 1) {
            const KEYTYPE& p = mKeys[i - 1];
            k.tangentOut = 0;
            k.tangentIn = -(k.value - p.value) * (k.time - p.time);
        } else {
            const KEYTYPE&  p = mKeys[i - 1];
            const KEYTYPE&  q = mKeys[i + 1];
            const float     dtPrev = k.time - p.time, dtNext = q.time - k.time;
            const VALUETYPE s = (q.value - k.value) * (0.5f / dtPrev) + (k.value - p.value) * (0.5f / dtNext);
            k.tangentOut = s * dtNext;
            k.tangentIn = -s * dtPrev;
        }
    }
}

} // namespace zentrak::mathbase
