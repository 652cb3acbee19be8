// Animation as key lists.
#pragma once

#include "import/model.h"
#include "import/transform.h"

#include "o3d_track.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::importer {

// How far a resampled turn may be off at any time, radians.
constexpr double MAX_TURN_ERROR = 0.0005;
// And a resampled position, of the size of the scene.
constexpr double MAX_PLACE_ERROR = 0.0001;

struct Pose {
    Vector position;
    Quaternion rotation;
};

// The pose at `time` by a channel, or by `rest` for what the channel has no keys of.
Trs poseAt(const Channel& channel, const Trs& rest, double time);

// All times at which a key of the channel lies, ascending, each once.
std::vector<double> keyTimes(const Channel& channel);

// The channel's keys, in the engine's space, as tracks. Positions and scales are as exact as the numbers;
// turns are resampled within MAX_TURN_ERROR. What can't be kept is said, a text each.
void setTracks(const Channel& channel, const Space& space, o3d::TrackVector3f& position,
               o3d::TrackEulerf& rotation, o3d::TrackVector3f& scale, std::vector<std::string>& losses);

// A pose that moves in any way between `times`, resampled within MAX_TURN_ERROR and `placeError`.
void setTracks(const std::vector<double>& times, const std::function<Pose(double)>& pose, double placeError,
               o3d::TrackVector3f& position, o3d::TrackEulerf& rotation, std::vector<std::string>& losses);

} // namespace zentrak::importer
