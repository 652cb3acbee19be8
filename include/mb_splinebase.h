// A keyed curve over time: the one that the timeline evaluates and the editor edits.
#pragma once

#include "mb_assert.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zentrak::mathbase {

template <typename VALUETYPE>
struct SplineBaseKey {
    float time = 0;
    VALUETYPE value = 0;
    VALUETYPE tangentIn = 0;  // stored negated: the value in the direction of the previous key
    VALUETYPE tangentOut = 0; // both tangents are scaled to the segment they belong to
};

// What mCurrent is when a time is in no segment.
enum SplineBaseOutcome { SPLINE_BEFORE = -1, SPLINE_AFTER = -2, SPLINE_EMPTY = -3 };

// The values of mMode.
enum SplineBaseMode { SPLINE_SQUARE = 0, SPLINE_LINEAR = 1, SPLINE_SMOOTH = 2 };

template <typename VALUETYPE, typename KEYTYPE>
class SplineBase {
public:
    mutable int mCurrent = -1; // segment of the last look-up, or a SplineBaseOutcome
    VALUETYPE mMin = 0;        // bounds of the keys' values; only smooth splines with automatic
    VALUETYPE mMax = 0;        // tangents widen them beyond the first key
    int mMode = SPLINE_SMOOTH;
    std::vector<KEYTYPE> mKeys; // ascending by time
    bool mAutoTangents = true;  // recomputed at each change, in smooth mode

    // Inserts after all keys of the same or an earlier time and returns the new key's index.
    int addKey(const KEYTYPE& key) {
        const int found = findSegment(key.time);
        const int count = getNumKeys();
        const int index = found >= 0 ? found + 1 : found == SPLINE_BEFORE ? 0 : count;
        mCurrent = -1;
        if (count == 0) {
            mMin = key.value;
            mMax = key.value;
        }
        mKeys.insert(mKeys.begin() + index, key);
        updateTangents(index, index, index);
        return index;
    }

    // Replaces all keys. They may come in any order; equal times keep theirs, and a time that isn't a number
    // goes last. As if each had been added to an empty spline, but n log n.
    void setKeys(std::vector<KEYTYPE> keys) {
        const auto isEarlier = [](const KEYTYPE& a, const KEYTYPE& b) {
            return a.time < b.time || (a.time == a.time && b.time != b.time);
        };
        std::stable_sort(keys.begin(), keys.end(), isEarlier);
        mKeys = std::move(keys);
        mCurrent = -1;
        updateTangents(0, 0, 0);
    }

    // Removes the key at `index`; asserts if there is none. A spline that loses its last
    // key keeps its bounds.
    void removeKey(int index) {
        MB_ASSERT_AT(index >= 0 && index < (int)mKeys.size(), "index>=0 && index<(int)mKeys.size()",
                     "mb_splinebase", 165);
        mKeys.erase(mKeys.begin() + index);
        const int count = getNumKeys();
        if (count == 0)
            return;
        const int neighbour = index == count ? index - 1 : index;
        updateTangents(neighbour, neighbour, neighbour);
        mCurrent = -1;
    }

    // Recomputes the bounds and, in smooth mode with automatic tangents, all tangents. `index` is the key
    // whose tangents become 0 when it is the only one; the other two are unused.
    //
    // The slopes are what the curves were tuned with: a middle key weighs each difference by the span of the
    // other side, an end key multiplies by its span.
    void updateTangents(int index, int, int) {
        const int count = getNumKeys();
        if (count == 0)
            return;
        mMin = mKeys[0].value;
        mMax = mKeys[0].value;
        if (!mAutoTangents || mMode != SPLINE_SMOOTH)
            return;
        if (count == 1) {
            if (index == 0) {
                mKeys[0].tangentIn = 0;
                mKeys[0].tangentOut = 0;
            }
            return;
        }
        for (int i = 0; i < count; ++i) {
            KEYTYPE& key = mKeys[i];
            mMin = key.value < mMin ? key.value : mMin;
            mMax = key.value > mMax ? key.value : mMax;
            if (i == 0) {
                const KEYTYPE& next = mKeys[1];
                key.tangentIn = 0;
                key.tangentOut = (next.value - key.value) * (next.time - key.time);
            } else if (i == count - 1) {
                const KEYTYPE& previous = mKeys[i - 1];
                key.tangentOut = 0;
                key.tangentIn = -(key.value - previous.value) * (key.time - previous.time);
            } else {
                const KEYTYPE& previous = mKeys[i - 1];
                const KEYTYPE& next = mKeys[i + 1];
                const float spanBefore = key.time - previous.time;
                const float spanAfter = next.time - key.time;
                const VALUETYPE slope = (next.value - key.value) * (0.5f / spanBefore) +
                                        (key.value - previous.value) * (0.5f / spanAfter);
                key.tangentOut = slope * spanAfter;
                key.tangentIn = -slope * spanBefore;
            }
        }
    }

    int getNumKeys() const { return int(mKeys.size()); }

    // The curve at `time`: 0 without keys, constant before the first and after the last key. Allocates
    // nothing.
    VALUETYPE evaluate(float time) const {
        const int found = findSegment(time);
        mCurrent = found;
        if (found < 0) {
            return found == SPLINE_EMPTY    ? VALUETYPE(0)
                   : found == SPLINE_BEFORE ? mKeys.front().value
                                            : mKeys.back().value;
        }
        const KEYTYPE& a = mKeys[found];
        if (mMode == SPLINE_SQUARE || found + 1 == getNumKeys())
            return a.value;
        const KEYTYPE& b = mKeys[found + 1];
        const float u = (time - a.time) / (b.time - a.time);
        if (mMode == SPLINE_LINEAR)
            return (1.0f - u) * a.value + u * b.value;
        const VALUETYPE d = b.value - a.value;
        const VALUETYPE m = a.tangentOut;
        const VALUETYPE w = b.tangentIn;
        const float u2 = u * u;
        return a.value + m * u + (3.0f * d - 2.0f * m + w) * u2 + (m - 2.0f * d - w) * (u2 * u);
    }

    // "square", "linear", "smooth" or "unknown".
    static std::string getModeName(int mode) {
        return mode == SPLINE_SQUARE   ? "square"
               : mode == SPLINE_LINEAR ? "linear"
               : mode == SPLINE_SMOOTH ? "smooth"
                                       : "unknown";
    }

private:
    // The last key at or before `time`, which is the last key of all only at exactly its time; or a
    // SplineBaseOutcome.
    int findSegment(float time) const {
        const int count = getNumKeys();
        if (count == 0)
            return SPLINE_EMPTY;
        if (time < mKeys.front().time)
            return SPLINE_BEFORE;
        if (count == 1 || time > mKeys.back().time)
            return SPLINE_AFTER;
        int low = 0;
        int high = count - 1;
        int middle = 0;
        while (low <= high) {
            middle = (low + high) / 2;
            if (mKeys[middle].time > time)
                high = middle - 1;
            else if (middle + 1 < count && time < mKeys[middle + 1].time)
                break;
            else
                low = middle + 1;
        }
        return middle;
    }
};

} // namespace zentrak::mathbase
