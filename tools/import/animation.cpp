#include "import/animation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace zentrak::importer {

namespace {

constexpr double FIRST_STEP = 0.5; // radians: the first subdivision of a turn, before its error is measured
constexpr int MAX_HALVINGS = 12;

struct Sample {
    double time;
    Vector position;
    Vector angles;
};

// The keys of one component. Keys in the middle of a straight run are dropped, and all keys of a constant
// one.
void setKeys(o3d::TrackBlenderFloat& track, const std::vector<double>& times,
             const std::vector<double>& values, double exactness, int extrapolation) {
    track.mKeys.clear();
    const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
    track.mValue = float(values.front());
    if (*highest - *lowest <= exactness)
        return;
    track.mInterpolation = o3d::TrackBlenderFloat::INTERPOLATION_LINEAR;
    track.mExtrapolation = extrapolation;
    const auto add = [&](size_t i) {
        // At a jump, and where keys are closer together than floats, the next representable time.
        float time = float(times[i]);
        if (!track.mKeys.empty())
            time = std::max(time, nextafterf(track.mKeys.back().mTime, INFINITY));
        const float value = float(values[i]);
        track.mKeys.push_back({time, value, time, value, time, value});
    };
    // The slopes that a line from the last key may have to pass all the values since.
    size_t last = 0;
    double least = -INFINITY, most = INFINITY;
    add(0);
    for (size_t i = 1; i < times.size(); ++i) {
        const double span = times[i] - times[last];
        const double slope = (values[i] - values[last]) / span;
        if (i > last + 1 && !(slope >= least && slope <= most)) {
            last = i - 1;
            add(last);
            least = -INFINITY;
            most = INFINITY;
        }
        const double step = times[i] - times[last];
        if (step > 0) {
            least = std::max(least, (values[i] - exactness - values[last]) / step);
            most = std::min(most, (values[i] + exactness - values[last]) / step);
        } else {
            // A jump ends any straight run.
            least = INFINITY;
        }
    }
    add(times.size() - 1);
}

// The tolerance of a component's keys: a little above the precision of a float.
double exactnessOf(const std::vector<Sample>& samples, unsigned component, bool angles) {
    double largest = 0;
    for (const Sample& sample : samples)
        largest = std::max(largest, fabs(angles ? sample.angles[component] : sample.position[component]));
    return angles ? MAX_TURN_ERROR * 0.1 : largest * 2e-7;
}

void setComponents(const std::vector<Sample>& samples, bool angles,
                   o3d::TrackBlenderFloat* const (&tracks)[3], int extrapolation) {
    std::vector<double> times, values;
    for (const Sample& sample : samples)
        times.push_back(sample.time);
    for (unsigned i = 0; i < 3; ++i) {
        values.clear();
        for (const Sample& sample : samples)
            values.push_back(angles ? sample.angles[i] : sample.position[i]);
        setKeys(*tracks[i], times, values, exactnessOf(samples, i, angles), extrapolation);
    }
}

void setComponents(const std::vector<VectorKey>& keys, const std::function<Vector(const Vector&)>& convert,
                   o3d::TrackVector3f& track, int extrapolation) {
    std::vector<Sample> samples;
    for (const VectorKey& key : keys)
        samples.push_back({key.time, convert(key.value), Vector()});
    setComponents(samples, false, {&track.mX, &track.mY, &track.mZ}, extrapolation);
}

// Cuts a motion into pieces that are straight enough.
class Sampler {
public:
    Sampler(const std::function<Pose(double)>& pose, double placeError)
        : mPose(pose), mPlaceError(placeError) {}

    void start(double time) {
        mSamples.push_back(sampleAt(time, mSamples.empty() ? Vector() : last().angles));
    }

    // From the last sample on.
    void goTo(double time) {
        const double from = last().time;
        const double turn = angleBetween(mPose(from).rotation, mPose(time).rotation);
        const int pieces = turn > FIRST_STEP ? int(ceil(turn / FIRST_STEP)) : 1; // 1 for NaN, too
        for (int i = 1; i <= pieces; ++i) {
            const Sample before = last();
            const double end = i == pieces ? time : from + (time - from) * i / pieces;
            piece(before, sampleAt(end, before.angles), MAX_HALVINGS);
        }
    }

    std::vector<Sample> mSamples;
    double mWorstTurn = 0, mWorstPlace = 0; // errors that remain

private:
    const Sample& last() const { return mSamples.back(); }

    Sample sampleAt(double time, const Vector& near) const {
        const Pose pose = mPose(time);
        return {time, pose.position, toAngles(pose.rotation, near)};
    }

    void piece(const Sample& a, const Sample& b, int halvings) {
        double turn = 0, place = 0;
        for (const double share : {0.25, 0.5, 0.75}) {
            const Pose pose = mPose(a.time + (b.time - a.time) * share);
            turn = std::max(
                turn, angleBetween(pose.rotation, fromAngles(a.angles * (1 - share) + b.angles * share)));
            place =
                std::max(place, (pose.position - (a.position * (1 - share) + b.position * share)).Length());
        }
        // A tenth of the tolerance is for dropped keys, and some for the times between the three samples.
        if (turn <= MAX_TURN_ERROR * 0.7 && place <= mPlaceError * 0.7) {
            mSamples.push_back(b);
            return;
        }
        if (halvings == 0) {
            mWorstTurn = std::max(mWorstTurn, turn);
            mWorstPlace = std::max(mWorstPlace, place);
            mSamples.push_back(b);
            return;
        }
        const Sample middle = sampleAt((a.time + b.time) / 2, a.angles);
        piece(a, middle, halvings - 1);
        piece(middle, sampleAt(b.time, middle.angles), halvings - 1);
    }

    const std::function<Pose(double)>& mPose;
    double mPlaceError;
};

void sayWorst(const Sampler& sampler, std::vector<std::string>& losses) {
    if (sampler.mWorstTurn <= MAX_TURN_ERROR && sampler.mWorstPlace == 0)
        return;
    char text[128];
    snprintf(text, sizeof text,
             "it jumps or turns too fast to follow: off by up to %.2f degrees and %g units there",
             sampler.mWorstTurn * 180 / std::numbers::pi, sampler.mWorstPlace);
    losses.push_back(text);
}

template <class Key>
size_t segmentOf(const std::vector<Key>& keys, double time) {
    size_t i = 0, end = keys.size();
    while (i < end) {
        const size_t middle = (i + end) / 2;
        if (keys[middle].time <= time)
            i = middle + 1;
        else
            end = middle;
    }
    return i; // the first key after `time`
}

Vector valueAt(const std::vector<VectorKey>& keys, double time) {
    const size_t next = segmentOf(keys, time);
    if (next == 0)
        return keys.front().value;
    if (next == keys.size())
        return keys.back().value;
    const VectorKey &a = keys[next - 1], &b = keys[next];
    return a.value + (b.value - a.value) * ((time - a.time) / (b.time - a.time));
}

Quaternion valueAt(const std::vector<QuaternionKey>& keys, double time) {
    const size_t next = segmentOf(keys, time);
    if (next == 0)
        return keys.front().value;
    if (next == keys.size())
        return keys.back().value;
    const QuaternionKey &a = keys[next - 1], &b = keys[next];
    return mix(a.value, b.value, (time - a.time) / (b.time - a.time));
}

void setRotation(const std::vector<QuaternionKey>& source, const Space& space, o3d::TrackEulerf& track,
                 int extrapolation, std::vector<std::string>& losses) {
    std::vector<QuaternionKey> keys = source;
    for (QuaternionKey& key : keys)
        key.value = space.rotation(key.value);
    size_t segment = 0;
    const std::function<Pose(double)> pose = [&](double time) {
        const QuaternionKey &a = keys[segment], &b = keys[std::min(segment + 1, keys.size() - 1)];
        if (b.time <= a.time)
            return Pose{Vector(), time < b.time ? a.value : b.value};
        return Pose{Vector(), mix(a.value, b.value, (time - a.time) / (b.time - a.time))};
    };
    Sampler sampler(pose, 1.0);
    sampler.start(keys.front().time);
    for (; segment + 1 < keys.size(); ++segment) {
        if (keys[segment + 1].time > keys[segment].time)
            sampler.goTo(keys[segment + 1].time);
        else
            sampler.start(keys[segment + 1].time);
    }
    sayWorst(sampler, losses);
    setComponents(sampler.mSamples, true, {&track.mX, &track.mY, &track.mZ}, extrapolation);
}

int extrapolationOf(const Channel& channel, std::vector<std::string>& losses) {
    if (channel.before == Beyond::EXTRAPOLATE || channel.after == Beyond::EXTRAPOLATE)
        losses.push_back("it is extrapolated outside its keys: it stands still there");
    if (channel.before != Beyond::REPEAT && channel.after != Beyond::REPEAT)
        return o3d::TrackBlenderFloat::EXTRAPOLATION_CONSTANT;
    if (channel.before != channel.after)
        losses.push_back("it repeats on one side of its keys: it repeats on both");
    return o3d::TrackBlenderFloat::EXTRAPOLATION_CYCLIC;
}

} // namespace

Trs poseAt(const Channel& channel, const Trs& rest, double time) {
    Trs result = rest;
    result.inner = Quaternion();
    result.sheared = false;
    if (!channel.positions.empty())
        result.position = valueAt(channel.positions, time);
    if (!channel.rotations.empty())
        result.rotation = valueAt(channel.rotations, time);
    if (!channel.scales.empty())
        result.scale = valueAt(channel.scales, time);
    return result;
}

std::vector<double> keyTimes(const Channel& channel) {
    std::vector<double> times;
    for (const auto* keys : {&channel.positions, &channel.scales})
        for (const VectorKey& key : *keys)
            times.push_back(key.time);
    for (const QuaternionKey& key : channel.rotations)
        times.push_back(key.time);
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

void setTracks(const Channel& channel, const Space& space, o3d::TrackVector3f& position,
               o3d::TrackEulerf& rotation, o3d::TrackVector3f& scale, std::vector<std::string>& losses) {
    const int extrapolation = extrapolationOf(channel, losses);
    if (!channel.positions.empty())
        setComponents(
            channel.positions, [&space](const Vector& v) { return space.point(v); }, position, extrapolation);
    if (!channel.rotations.empty())
        setRotation(channel.rotations, space, rotation, extrapolation, losses);
    if (!channel.scales.empty())
        setComponents(
            channel.scales, [&space](const Vector& v) { return space.scale(v); }, scale, extrapolation);
}

void setTracks(const std::vector<double>& times, const std::function<Pose(double)>& pose, double placeError,
               o3d::TrackVector3f& position, o3d::TrackEulerf& rotation, std::vector<std::string>& losses) {
    Sampler sampler(pose, placeError);
    sampler.start(times.empty() ? 0.0 : times.front());
    for (size_t i = 1; i < times.size(); ++i)
        sampler.goTo(times[i]);
    sayWorst(sampler, losses);
    const int constant = o3d::TrackBlenderFloat::EXTRAPOLATION_CONSTANT;
    setComponents(sampler.mSamples, false, {&position.mX, &position.mY, &position.mZ}, constant);
    setComponents(sampler.mSamples, true, {&rotation.mX, &rotation.mY, &rotation.mZ}, constant);
}

} // namespace zentrak::importer
