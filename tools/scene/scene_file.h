// Scene files as the loader wants them, from objects of the scene library.
#pragma once

#include "o3d_manager.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::scene {

using mathbase::Vector3f;

// An armature that is not lost on writing.
class WritableArmature : public o3d::Armature {
public:
    void writeChunk(chunklib::WriteBuffer& buffer) override;
};

// The file image of all that the Manager holds. Unlike Manager::write() this is what Manager::load() reads: a
// Submesh's material number as a byte and the material names as bare texts; bone groups, which no loader
// takes, are left out. Throws Exception, with the Mesh's name, for what a file can't hold: a material number
// above 255, and numbers outside their lists.
std::string sceneFile(const o3d::Manager& manager);

// Hands objects to the Manager, which owns them; a pointer to the object comes back.
o3d::Mesh* addMesh(o3d::Manager& manager, std::unique_ptr<o3d::Mesh> mesh);
o3d::Material* addMaterial(o3d::Manager& manager, const std::string& name, const mathbase::Vector4f& color);

// A new child that shows the mesh at `position`, turned by `angles` (radians, order YZX). It overrides each
// material by the Mesh's own, for those who only ask the instance.
o3d::MeshInstance* addInstance(o3d::SceneNode& parent, const std::string& name, const o3d::Mesh& mesh,
                               const Vector3f& position, const Vector3f& angles = Vector3f(0.0f, 0.0f, 0.0f));
o3d::Dummy* addDummy(o3d::SceneNode& parent, const std::string& name, const Vector3f& position);

void setValue(o3d::TrackVector3f& track, const Vector3f& value);
void setValue(o3d::TrackEulerf& track, const Vector3f& value);

// A curve through these values at even steps of time, smooth at each key; closed curves repeat for ever, and
// their last value has to be the first (or, for an angle, the first and whole turns).
void setCurve(o3d::TrackBlenderFloat& track, const std::vector<float>& values, float step, bool closed);

// The angles (order YZX) of a Camera at `eye` that looks at `target` with y up.
Vector3f lookAt(const Vector3f& eye, const Vector3f& target);

} // namespace zentrak::scene
