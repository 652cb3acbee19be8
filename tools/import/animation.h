// Animation as key lists.
#pragma once

#include "import/model.h"
#include "import/transform.h"

#include "o3d_track.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::importer {

// The largest error of a resampled rotation at any time, radians.
constexpr double MAX_TURN_ERROR = 0.0005;
// The same for a position, as a fraction of the scene's size.
constexpr double MAX_PLACE_ERROR = 0.0001;

struct Pose {
    Vector position;
    Quaternion rotation;
};

// The channel's pose at `time`; components without keys are those of `rest`.
Trs poseAt(const Channel& channel, const Trs& rest, double time);

// The times of all keys of the channel, ascending, each once.
std::vector<double> keyTimes(const Channel& channel);

// The channel's keys as tracks, in the engine's space. Positions and scales are exact; rotations are
// resampled to within MAX_TURN_ERROR. Adds a text to `losses` for everything that is lost.
void setTracks(const Channel& channel, const Space& space, o3d::TrackVector3f& position,
               o3d::TrackEulerf& rotation, o3d::TrackVector3f& scale, std::vector<std::string>& losses);

// A pose that moves arbitrarily between `times`, resampled to within MAX_TURN_ERROR and `placeError`.
void setTracks(const std::vector<double>& times, const std::function<Pose(double)>& pose, double placeError,
               o3d::TrackVector3f& position, o3d::TrackEulerf& rotation, std::vector<std::string>& losses);

} // namespace zentrak::importer
