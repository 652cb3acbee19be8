#include "import/convert.h"

#include "command/command.h"
#include "import/animation.h"
#include "import/geometry.h"
#include "import/points.h"
#include "import/transform.h"
#include "o3d_chunk.h"
#include "scene/scene_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <stdexcept>

namespace zentrak::importer {

using command::format;
using mathbase::Vector3f;

namespace {

constexpr size_t MAX_PARTS = 256; // of a mesh: their numbers are bytes
// Some of what the loader takes is for the chunks in and around the nodes.
constexpr int MAX_NODE_DEPTH = int(o3d::MAX_DEPTH) - 100;
constexpr double NEAREST = 0.5; // near plane of the effects' cameras, units
constexpr double FARTHEST = 1000;

Vector3f toFloat(const Vector& v) {
    return Vector3f(float(v.x), float(v.y), float(v.z));
}

// A name that is not in `taken`.
std::string uniqueName(const std::string& wanted, const char* otherwise, std::set<std::string>& taken) {
    const std::string base = wanted.empty() ? otherwise : wanted;
    std::string name = base;
    for (int i = 2; !taken.insert(name).second; ++i)
        name = base + "." + std::to_string(i);
    return name;
}

struct Bounds {
    Vector low{INFINITY, INFINITY, INFINITY}, high{-INFINITY, -INFINITY, -INFINITY};

    void add(const Vector& v) {
        for (unsigned i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], v[i]);
            high[i] = std::max(high[i], v[i]);
        }
    }
    bool isEmpty() const { return !(low.x <= high.x); }
    Vector centre() const { return isEmpty() ? Vector() : (low + high) * 0.5; }
    double radius() const { return isEmpty() ? 0.0 : (high - low).Length() / 2; }
};

class Converter {
public:
    Converter(const Model& model, const Options& options, const std::string& name)
        : mModel(model),
          mOptions(options),
          mSpace(axesOf(model, options), scaleOf(model, options)),
          mScene(new o3d::Scene) {
        mManager.addScene(mScene);
        mScene->mName = model.name.empty() ? name : model.name;
    }

    Conversion run() {
        if (mModel.nodes.empty())
            throw std::runtime_error("it has no nodes");
        chooseAnimation();
        measure();
        if (mOptions.points) {
            addPoints();
        } else {
            addMaterials();
            addCameras();
            if (mOptions.flat)
                addFlat();
            else
                addTree();
            if (mOptions.camera && mModel.cameras.empty())
                addDefaultCamera();
        }
        sayParts();
        sayAnimations();
        sayRest();
        count();
        mResult.image = scene::sceneFile(mManager);
        return std::move(mResult);
    }

private:
    static Matrix3 axesOf(const Model& model, const Options& options) {
        return options.up.empty() ? model.axes : axesWithUp(options.up);
    }

    static double scaleOf(const Model& model, const Options& options) { return model.unit * options.scale; }

    void lose(const Node& node, const std::string& text) { lose(node.name, text); }
    void lose(const std::string& node, const std::string& text) {
        mResult.losses.push_back((node.empty() ? "a node without a name: " : "node '" + node + "': ") + text);
    }

    int findNode(const std::string& name) const {
        for (size_t i = 0; i < mModel.nodes.size(); ++i)
            if (mModel.nodes[i].name == name)
                return int(i);
        return -1;
    }

    void chooseAnimation() {
        mChannels.assign(mModel.nodes.size(), nullptr);
        mRest.resize(mModel.nodes.size());
        for (size_t i = 0; i < mModel.nodes.size(); ++i) {
            mRest[i] = decompose(mModel.nodes[i].matrix);
            if (!isFinite(mModel.nodes[i].matrix))
                lose(mModel.nodes[i], "its transform is not a number: it is ignored");
        }
        const auto& animations = mModel.animations;
        const std::string& wanted = mOptions.animation;
        if (wanted.empty() && animations.empty())
            return;
        size_t chosen = 0;
        if (!wanted.empty()) {
            while (chosen < animations.size() && animations[chosen].name != wanted &&
                   std::to_string(chosen + 1) != wanted)
                ++chosen;
            if (chosen == animations.size())
                throw std::runtime_error("it has no animation '" + wanted + "'");
        }
        mAnimation = &animations[chosen];
        std::map<std::string, int> byName;
        for (size_t i = mModel.nodes.size(); i-- > 0;)
            byName[mModel.nodes[i].name] = int(i);
        for (const Channel& channel : mAnimation->channels) {
            const auto found = byName.find(channel.node);
            if (found == byName.end())
                lose(channel.node, "it is animated but not in the scene");
            else if (!channel.positions.empty() || !channel.rotations.empty() || !channel.scales.empty())
                mChannels[size_t(found->second)] = &channel;
        }
    }

    Matrix localAt(size_t node, double time) const {
        if (!mChannels[node])
            return isFinite(mModel.nodes[node].matrix) ? mModel.nodes[node].matrix : Matrix();
        const Trs pose = poseAt(*mChannels[node], mRest[node], time);
        return toMatrix(pose.position, pose.rotation, pose.scale);
    }

    // In the file's space.
    Matrix worldAt(int node, double time) const {
        Matrix result;
        for (; node >= 0; node = mModel.nodes[size_t(node)].parent)
            result = localAt(size_t(node), time) * result;
        return result;
    }

    // The scene's box at time 0, and the scale and offset that fit it in.
    void measure() {
        Bounds bounds;
        mWorld.resize(mModel.nodes.size());
        for (size_t i = 0; i < mModel.nodes.size(); ++i) {
            const Node& node = mModel.nodes[i];
            mWorld[i] = localAt(i, 0);
            if (node.parent >= 0)
                mWorld[i] = mWorld[size_t(node.parent)] * mWorld[i];
            for (const uint32_t part : node.parts)
                for (const auto& p : mModel.parts[part].positions) {
                    const Vector v =
                        mSpace.point(mWorld[i] * Vector(double(p[0]), double(p[1]), double(p[2])));
                    if (std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z))
                        bounds.add(v);
                }
        }
        if (mOptions.fit > 0 && bounds.radius() > 0) {
            const double factor = mOptions.fit / bounds.radius();
            mSpace = Space(axesOf(mModel, mOptions), scaleOf(mModel, mOptions) * factor);
            mOffset = bounds.centre() * -factor;
            Bounds fitted;
            fitted.add(bounds.low * factor + mOffset);
            fitted.add(bounds.high * factor + mOffset);
            bounds = fitted;
            mResult.remarks.push_back(format("fitted into %g units around the origin", bounds.radius()));
        }
        mBounds = bounds;
        const double radius = mBounds.radius();
        if (!mOptions.points && radius > 0 && (radius * 2 > FARTHEST || radius * 2 < NEAREST))
            mResult.remarks.push_back(
                format("it is %.4g units across, and a scene's camera sees from %g to %g "
                       "units: --scale or --fit changes that",
                       radius * 2, NEAREST, FARTHEST));
    }

    void addMaterials() {
        std::set<std::string> taken;
        std::map<std::string, std::string> images;
        std::set<uint32_t> used;
        for (const Part& part : mModel.parts)
            used.insert(part.material);
        for (uint32_t i = 0; i < mModel.surfaces.size(); ++i) {
            const Surface& surface = mModel.surfaces[i];
            if (!used.contains(i)) {
                mMaterials.emplace_back();
                continue;
            }
            mMaterials.push_back(uniqueName(surface.name, "material", taken));
            addMaterial(surface, images);
        }
        mNoMaterial = uniqueName("none", "none", taken);
    }

    void addMaterial(const Surface& surface, std::map<std::string, std::string>& images) {
        auto material = std::make_unique<o3d::Material>();
        material->mName = mMaterials.back();
        std::map<std::string, o3d::Material::Attribute*> attributes;
        const auto attribute = [&](const std::string& kind) {
            auto& entry = attributes[kind];
            if (!entry) {
                auto made = std::make_unique<o3d::Material::Attribute>();
                made->mName = kind;
                made->mColor = o3d::Vector4f(1, 1, 1, 1);
                entry = made.get();
                material->mAttributes.push_back(made.release());
            }
            return entry;
        };
        for (const ColorUse& color : surface.colors)
            attribute(color.kind)->mColor =
                o3d::Vector4f(color.rgba[0], color.rgba[1], color.rgba[2], color.rgba[3]);
        for (const TextureUse& use : surface.textures) {
            if (use.file.empty() || use.file[0] == '*')
                mResult.losses.push_back("material '" + mMaterials.back() + "': its " + use.kind +
                                         " picture lies in the file itself, and stays there");
            o3d::Texture& texture = mTextures.emplace_back();
            texture.mName = use.file;
            texture.mImageName = use.file;
            attribute(use.kind)->mTextures.push_back(&texture);
            if (!images.emplace(use.file, use.file).second)
                continue;
            auto image = std::make_unique<o3d::Image>();
            image->mName = image->mFileName = use.file;
            mManager.mImages.push_back(image.release());
        }
        if (material->mAttributes.empty())
            attribute("diffuse");
        mManager.mMaterialMap[material->mName] = int(mManager.mMaterials.size());
        mManager.mMaterials.push_back(material.release());
    }

    const std::string& materialOf(const Part& part) {
        if (part.material < mMaterials.size())
            return mMaterials[part.material];
        if (!mManager.getMaterial(mNoMaterial))
            scene::addMaterial(mManager, mNoMaterial, o3d::Vector4f(1, 1, 1, 1));
        return mNoMaterial;
    }

    // The mesh of these parts, made once for each node; null if nothing is left of them.
    const o3d::Mesh* meshOf(const Node& node, const std::vector<uint32_t>& numbers, const Matrix& place,
                            bool shared) {
        const auto known = mMeshes.find(numbers);
        if (shared && known != mMeshes.end())
            return known->second;
        std::vector<const Part*> parts;
        for (const uint32_t number : numbers)
            parts.push_back(&mModel.parts[number]);
        MeshLosses losses;
        auto mesh = buildMesh(parts, mSpace, place, losses);
        sayMesh(node, losses);
        if (mOffset != Vector() && !shared)
            for (Vector3f& vertex : mesh->mVertices)
                vertex += toFloat(mOffset);
        for (const Part* part : parts)
            mesh->mMaterials.push_back(materialOf(*part));
        std::erase_if(mesh->mSubmeshes, [](o3d::Submesh* submesh) {
            if (!submesh->mTriangles.empty())
                return false;
            delete submesh;
            return true;
        });
        const o3d::Mesh* result = nullptr;
        if (!mesh->mSubmeshes.empty()) {
            mesh->mName = uniqueName(numbers.size() == 1 && !parts[0]->name.empty() && shared ? parts[0]->name
                                                                                              : node.name,
                                     "mesh", mMeshNames);
            result = scene::addMesh(mManager, std::move(mesh));
        }
        if (shared)
            mMeshes[numbers] = result;
        return result;
    }

    void sayMesh(const Node& node, const MeshLosses& losses) {
        if (losses.flatTriangles > 0)
            lose(node, format("%zu triangles without area are left out", losses.flatTriangles));
        if (losses.movedTexCoords > 0)
            lose(node, format("%zu triangles without area in the texture: their coordinates move by 0.0001",
                              losses.movedTexCoords));
        if (losses.brokenTexCoords > 0)
            lose(node, format("%zu texture coordinates are not numbers: 0 now", losses.brokenTexCoords));
    }

    // The parts with triangles, at most MAX_PARTS a group.
    std::vector<std::vector<uint32_t>> groupsOf(const Node& node) const {
        std::vector<std::vector<uint32_t>> groups;
        for (const uint32_t part : node.parts) {
            if (mModel.parts[part].triangles.empty())
                continue;
            if (groups.empty() || groups.back().size() == MAX_PARTS)
                groups.emplace_back();
            groups.back().push_back(part);
        }
        return groups;
    }

    static o3d::SceneNode* addInstance(o3d::SceneNode& parent, const std::string& name,
                                       const o3d::Mesh* mesh) {
        if (mesh)
            return scene::addInstance(parent, name, *mesh, Vector3f(0, 0, 0));
        return scene::addDummy(parent, name, Vector3f(0, 0, 0));
    }

    static void setTransform(o3d::SceneNode& node, const Vector& position, const Quaternion& rotation,
                             const Vector& scale) {
        scene::setValue(node.mPosition, toFloat(position));
        scene::setValue(node.mRotation, toFloat(toAngles(rotation, Vector())));
        scene::setValue(node.mScale, toFloat(scale));
    }

    bool isPlainRoot() const {
        const Node& root = mModel.nodes[0];
        return root.parts.empty() && !mChannels[0] && mOffset == Vector() && root.matrix.IsIdentity() &&
               mModel.nodes.size() > 1 && root.parent < 0;
    }

    void addTree() {
        std::vector<o3d::SceneNode*> made(mModel.nodes.size(), nullptr);
        std::vector<int> depth(mModel.nodes.size(), 0);
        o3d::SceneNode* top = mScene;
        if (mOffset != Vector())
            top = scene::addDummy(*mScene, "fit", toFloat(mOffset));
        for (size_t i = 0; i < mModel.nodes.size(); ++i) {
            const Node& node = mModel.nodes[i];
            o3d::SceneNode* const parent = node.parent < 0 ? top : made[size_t(node.parent)];
            depth[i] = node.parent < 0 ? 0 : depth[size_t(node.parent)] + 1;
            if (depth[i] > MAX_NODE_DEPTH)
                throw std::runtime_error(format("its nodes are nested more than %d deep", MAX_NODE_DEPTH));
            made[i] = i == 0 && isPlainRoot() ? top : addNode(i, *parent);
        }
        addLights(made);
    }

    o3d::SceneNode* addNode(size_t number, o3d::SceneNode& parent) {
        const Node& node = mModel.nodes[number];
        const auto groups = groupsOf(node);
        const bool split = groups.size() > 1 || (!mChannels[number] && mRest[number].sheared);
        const o3d::Mesh* const mesh = groups.size() == 1 ? meshOf(node, groups[0], Matrix(), true) : nullptr;
        o3d::SceneNode* const outer = addInstance(parent, node.name, split ? nullptr : mesh);
        o3d::SceneNode* inner = outer;
        if (mChannels[number]) {
            const Trs& rest = mRest[number];
            setTransform(*outer, mSpace.point(rest.position), mSpace.rotation(rest.rotation),
                         mSpace.scale(rest.scale));
            std::vector<std::string> losses;
            if (mChannels[number]->disordered)
                losses.push_back("its keys are out of order: they are sorted by time");
            if (mChannels[number]->curved)
                losses.push_back("its curves between keys become straight lines");
            setTracks(*mChannels[number], mSpace, outer->mPosition, outer->mRotation, outer->mScale, losses);
            for (const std::string& loss : losses)
                lose(node, loss);
        } else {
            const Trs rest = decompose(mSpace.matrix(node.matrix));
            setTransform(*outer, rest.position, rest.rotation, rest.scale);
            if (rest.sheared) {
                inner = addInstance(*outer, node.name + SHEAR, mesh);
                setTransform(*inner, Vector(), rest.inner, Vector(1, 1, 1));
            }
        }
        for (size_t i = 0; groups.size() > 1 && i < groups.size(); ++i)
            addInstance(*inner, node.name + PIECE + std::to_string(i + 1),
                        meshOf(node, groups[i], Matrix(), true));
        return inner;
    }

    void addFlat() {
        for (size_t i = 0; i < mModel.nodes.size(); ++i) {
            const Node& node = mModel.nodes[i];
            for (const auto& group : groupsOf(node))
                if (const o3d::Mesh* const mesh = meshOf(node, group, mWorld[i], false))
                    scene::addInstance(*mScene, node.name, *mesh, Vector3f(0, 0, 0));
        }
        if (mAnimation)
            mResult.losses.push_back("animation '" + mAnimation->name + "': nothing moves in a flat scene");
    }

    void addPoints() {
        auto mesh = std::make_unique<o3d::Mesh>();
        mesh->mName = "points";
        std::vector<Vector> points = mOptions.pointCount > 0
                                         ? spreadPoints(mModel, mWorld, mOptions.pointCount)
                                         : vertexPoints(mModel, mWorld);
        for (const Vector& point : points) {
            const Vector3f v = toFloat(mSpace.point(point) + mOffset);
            // What draws points uses their direction from the origin.
            if (v.length() > 0)
                mesh->mVertices.push_back(v);
        }
        if (mesh->mVertices.empty())
            throw std::runtime_error("it has no points");
        if (const size_t lost = points.size() - mesh->mVertices.size(); lost > 0)
            mResult.losses.push_back(
                format("%zu points at the origin, which have no direction from it", lost));
        const o3d::Mesh* const made = scene::addMesh(mManager, std::move(mesh));
        scene::addInstance(*mScene, "points", *made, Vector3f(0, 0, 0));
    }

    // The pose of a camera or a light in the engine's space: it looks along -y, with -z up.
    Pose poseOf(int node, const Vector& position, const Vector& direction, const Vector& up,
                double time) const {
        const Matrix world = worldAt(node, time);
        const Matrix3 turn(world);
        Vector ahead = mSpace.direction(turn * direction);
        Vector above = mSpace.direction(turn * up);
        if (!(ahead.SquareLength() > 0))
            ahead = Vector(0, 0, -1);
        ahead.Normalize();
        Vector right = ahead ^ above;
        if (!(right.SquareLength() > 1e-12))
            right = ahead ^ (fabs(ahead.y) < 0.9 ? Vector(0, 1, 0) : Vector(1, 0, 0));
        right.Normalize();
        above = right ^ ahead;
        const Matrix3 axes(right.x, -ahead.x, -above.x, right.y, -ahead.y, -above.y, right.z, -ahead.z,
                           -above.z);
        Quaternion rotation(axes);
        rotation.Normalize();
        return {mSpace.point(world * position) + mOffset, rotation};
    }

    std::vector<double> timesOf(int node) const {
        std::vector<double> times;
        for (; node >= 0; node = mModel.nodes[size_t(node)].parent)
            if (const Channel* const channel = mChannels[size_t(node)]) {
                const std::vector<double> more = keyTimes(*channel);
                times.insert(times.end(), more.begin(), more.end());
            }
        std::sort(times.begin(), times.end());
        times.erase(std::unique(times.begin(), times.end()), times.end());
        return times;
    }

    // Directly in the scene, where effects look for them. Their own tracks include the motion of their
    // parents.
    void addCameras() {
        for (const CameraData& data : mModel.cameras) {
            auto camera = std::make_unique<o3d::Camera>();
            camera->mName = data.name.empty() ? "camera" : data.name;
            const int node = findNode(data.name);
            const std::function<Pose(double)> pose = [&](double time) {
                return poseOf(node, data.position, data.direction, data.up, time);
            };
            const Pose rest = pose(0);
            setTransform(*camera, rest.position, rest.rotation, Vector(1, 1, 1));
            std::vector<std::string> losses;
            const std::vector<double> times = timesOf(node);
            if (!mOptions.flat && times.size() > 0)
                setTracks(times, pose, MAX_PLACE_ERROR * std::max(mBounds.radius() * 2, 1e-6),
                          camera->mPosition, camera->mRotation, losses);
            if (data.angle > 0)
                camera->mAngle.mX.mValue = float(data.angle);
            if (data.orthographic)
                losses.push_back("its camera is orthographic: it gets a perspective");
            for (const std::string& loss : losses)
                lose(data.name, loss);
            mScene->addChild(camera.release());
        }
    }

    void addDefaultCamera() {
        const double angle = std::numbers::pi / 4;
        const double radius = std::max(mBounds.radius(), 1e-3);
        const Vector target = mBounds.centre();
        Vector back(0.5, 0.4, 1);
        back.Normalize();
        const Vector eye = target + back * (radius / sin(angle / 2) * 1.05);
        auto camera = std::make_unique<o3d::Camera>();
        camera->mName = "camera";
        camera->mAngle.mX.mValue = float(angle);
        scene::setValue(camera->mPosition, toFloat(eye));
        scene::setValue(camera->mRotation, scene::lookAt(toFloat(back), Vector3f(0, 0, 0)));
        mScene->mChildren.insert(mScene->mChildren.begin(), camera.release());
        mResult.remarks.push_back("the file has no camera: 'camera' looks at all of it");
    }

    void addLights(const std::vector<o3d::SceneNode*>& made) {
        for (const LightData& data : mModel.lights) {
            const int node = findNode(data.name);
            if (data.ambient) {
                lose(data.name, "an ambient light is left out");
                continue;
            }
            auto light = std::make_unique<o3d::Light>();
            light->mName = data.name;
            light->mColor.mR.mValue = data.color[0];
            light->mColor.mG.mValue = data.color[1];
            light->mColor.mB.mValue = data.color[2];
            if (data.angle > 0)
                light->mAngle.mX.mValue = float(data.angle);
            // In the node's own space, so the pose is relative to an identity node.
            const Pose pose = poseOf(-1, data.position, data.direction, Vector(0, 1, 0), 0);
            setTransform(*light, pose.position - mOffset, pose.rotation, Vector(1, 1, 1));
            (node >= 0 ? made[size_t(node)] : mScene)->addChild(light.release());
            lose(data.name, "its light keeps its colour and cone, and loses its range and falloff");
        }
    }

    void sayParts() {
        std::set<uint32_t> said;
        for (const Node& node : mModel.nodes)
            for (const uint32_t number : node.parts)
                if (said.insert(number).second)
                    sayPart(node, mModel.parts[number]);
    }

    void sayPart(const Node& node, const Part& part) {
        if (!mOptions.points && (part.lines > 0 || part.points > 0))
            lose(node, format("%u lines and %u points are left out", part.lines, part.points));
        if (part.badTriangles > 0)
            lose(node, format("%u triangles have invalid vertex indices", part.badTriangles));
        if (part.bones > 0)
            lose(node, format("it is deformed by %u bones: it stays in its rest pose", part.bones));
        if (part.morphs > 0)
            lose(node, format("%u morph targets are left out", part.morphs));
        if (mOptions.points)
            return;
        if (part.colors)
            lose(node, "vertex colours are left out");
        if (part.texCoordSets > 1)
            lose(node, format("of %u sets of texture coordinates the first is kept", part.texCoordSets));
        if (part.depthCoords)
            lose(node, "the third texture coordinate is left out");
    }

    void sayAnimations() {
        for (const Animation& animation : mModel.animations) {
            if (&animation != mAnimation)
                mResult.losses.push_back("animation '" + animation.name +
                                         "' is left out: --animation chooses it");
            else
                for (const std::string& other : animation.others)
                    lose(other, "its vertex animation is left out");
        }
    }

    void sayRest() {
        for (const std::string& warning : mModel.warnings)
            mResult.remarks.push_back("assimp: " + warning);
    }

    void count() {
        Counts& counts = mResult.counts;
        counts.nodes = mModel.nodes.size();
        counts.meshes = mManager.mMeshes.size();
        counts.materials = mManager.mMaterials.size();
        counts.cameras = mModel.cameras.size();
        for (const o3d::Mesh* mesh : mManager.mMeshes) {
            counts.points += mesh->mVertices.size();
            for (const o3d::Submesh* submesh : mesh->mSubmeshes)
                counts.triangles += submesh->mTriangles.size();
        }
        counts.length = double(mScene->getAnimationLength());
    }

    static constexpr const char* SHEAR = ".shear";
    static constexpr const char* PIECE = ".part";

    const Model& mModel;
    const Options& mOptions;
    Space mSpace;
    Vector mOffset; // engine's space
    Bounds mBounds; // engine's space
    Conversion mResult;

    const Animation* mAnimation = nullptr;
    std::vector<const Channel*> mChannels; // by node; null if not animated
    std::vector<Trs> mRest;                // by node
    std::vector<Matrix> mWorld;            // by node, at time 0, file's space

    std::vector<std::string> mMaterials; // names, by surface
    std::string mNoMaterial;
    std::set<std::string> mMeshNames;
    std::map<std::vector<uint32_t>, const o3d::Mesh*> mMeshes; // by parts
    std::deque<o3d::Texture> mTextures;                        // a Material does not own them
    o3d::Manager mManager;
    o3d::Scene* mScene; // mManager's
};

} // namespace

Matrix3 axesWithUp(const std::string& up) {
    if (up == "y")
        return Matrix3();
    if (up == "-y")
        return Matrix3(1, 0, 0, 0, -1, 0, 0, 0, -1);
    if (up == "z")
        return Matrix3(1, 0, 0, 0, 0, 1, 0, -1, 0);
    if (up == "-z")
        return Matrix3(1, 0, 0, 0, 0, -1, 0, 1, 0);
    if (up == "x")
        return Matrix3(0, -1, 0, 1, 0, 0, 0, 0, 1);
    if (up == "-x")
        return Matrix3(0, 1, 0, -1, 0, 0, 0, 0, 1);
    throw std::runtime_error("'" + up + "' is not an axis: x, y, z, -x, -y or -z");
}

Conversion convert(const Model& model, const Options& options, const std::string& name) {
    return Converter(model, options, name).run();
}

} // namespace zentrak::importer
