// Writes scene objects as files that the loader reads.
#pragma once

#include "o3d_manager.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::scene {

using mathbase::Vector3f;

// An armature that survives writing.
class WritableArmature : public o3d::Armature {
public:
    void writeChunk(chunklib::WriteBuffer& buffer) override;
};

// The file image of everything in the Manager. Unlike Manager::write() it is what Manager::load() reads: a
// Submesh's material number as a byte and material names as bare strings; bone groups, which no loader reads,
// are left out. Throws Exception, with the Mesh's name, for what a file can't hold: material numbers above
// 255 and indices out of range.
std::string sceneFile(const o3d::Manager& manager);

// Adds objects to the Manager, which owns them; returns the object.
o3d::Mesh* addMesh(o3d::Manager& manager, std::unique_ptr<o3d::Mesh> mesh);
o3d::Material* addMaterial(o3d::Manager& manager, const std::string& name, const mathbase::Vector4f& color);

// Adds a child that shows the mesh at `position`, turned by `angles` (radians, order YZX). It overrides each
// material with the Mesh's own, for code that only asks the instance.
o3d::MeshInstance* addInstance(o3d::SceneNode& parent, const std::string& name, const o3d::Mesh& mesh,
                               const Vector3f& position, const Vector3f& angles = Vector3f(0.0f, 0.0f, 0.0f));
o3d::Dummy* addDummy(o3d::SceneNode& parent, const std::string& name, const Vector3f& position);

void setValue(o3d::TrackVector3f& track, const Vector3f& value);
void setValue(o3d::TrackEulerf& track, const Vector3f& value);

// Sets a curve through these values at equal time steps, smooth at each key. Closed curves repeat forever;
// their last value must equal the first (for an angle, up to whole turns).
void setCurve(o3d::TrackBlenderFloat& track, const std::vector<float>& values, float step, bool closed);

// The angles (order YZX) of a Camera at `eye` that looks at `target` with y up.
Vector3f lookAt(const Vector3f& eye, const Vector3f& target);

} // namespace zentrak::scene
