#include "compare.h"

#include "import/child.h"
#include "import/read_model.h"
#include "o3d_chunk.h"
#include "o3d_manager.h"
#include "ztk_system.h"

#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace zentrak::test {

namespace {

using importer::Matrix;
using importer::Vector;

constexpr int SECONDS = 60;
constexpr int MEGABYTES = 4096;
constexpr int MOST_TIMES = 23;

// Positions at one time, in the order of the tree.
struct World {
    std::vector<Vector> nodes;
    std::vector<std::string> names;
    std::vector<Vector> corners; // three for each triangle
};

// assimp's side, using only its own classes and functions.
class Reference {
public:
    explicit Reference(const std::string& path) {
        mImporter.SetPropertyFloat("PP_GSN_MAX_SMOOTHING_ANGLE", 50.0f);
        mScene = mImporter.ReadFile(path, importer::READ_FLAGS);
        if (!mScene)
            throw std::runtime_error("assimp reads it only now and then");
        for (unsigned i = 0; mScene->mNumAnimations > 0 && i < mScene->mAnimations[0]->mNumChannels; ++i) {
            const aiNodeAnim* const channel = mScene->mAnimations[0]->mChannels[i];
            if (!inOrder(*channel))
                mComparable = false;
            if (const aiNode* const node = mScene->mRootNode->FindNode(channel->mNodeName))
                mChannels[node] = channel;
        }
        readFrame();
    }

    double rate() const {
        const double given = mScene->mNumAnimations > 0 ? mScene->mAnimations[0]->mTicksPerSecond : 0;
        return given > 0 ? given : 25;
    }

    // Some readers leave keys unsorted, which can't be sampled.
    static bool inOrder(const aiNodeAnim& channel) {
        const auto ascends = [](const auto* keys, unsigned count) {
            return std::is_sorted(keys, keys + count,
                                  [](const auto& a, const auto& b) { return a.mTime < b.mTime; });
        };
        return ascends(channel.mPositionKeys, channel.mNumPositionKeys) &&
               ascends(channel.mRotationKeys, channel.mNumRotationKeys) &&
               ascends(channel.mScalingKeys, channel.mNumScalingKeys);
    }

    // Start, end, and times in between; never exactly on a key, where a jump has two values.
    std::vector<double> times() const {
        if (!mComparable)
            return {};
        if (mChannels.empty())
            return {0};
        double first = INFINITY, last = -INFINITY;
        for (const auto& [node, channel] : mChannels) {
            const auto look = [&](double time) {
                first = std::min(first, time / rate());
                last = std::max(last, time / rate());
            };
            for (unsigned i = 0; i < channel->mNumPositionKeys; ++i)
                look(channel->mPositionKeys[i].mTime);
            for (unsigned i = 0; i < channel->mNumRotationKeys; ++i)
                look(channel->mRotationKeys[i].mTime);
        }
        std::vector<double> times = {first - 0.3};
        for (int i = 0; i < MOST_TIMES - 2; ++i)
            times.push_back(first + (last - first) * (i + 0.381966) / (MOST_TIMES - 2));
        times.push_back(last + 0.7);
        return times;
    }

    World at(double time) const {
        World world;
        visit(*mScene->mRootNode, aiMatrix4x4(), time, world);
        return world;
    }

private:
    // FBX specifies its axes and unit; assimp passes them on without applying them.
    void readFrame() {
        int32_t up = 1, front = 2, right = 0, upSign = 1, frontSign = 1, rightSign = 1;
        float unit = 100;
        if (const aiMetadata* const data = mScene->mMetaData) {
            data->Get("UnitScaleFactor", unit);
            data->Get("UpAxis", up);
            data->Get("UpAxisSign", upSign);
            data->Get("FrontAxis", front);
            data->Get("FrontAxisSign", frontSign);
            data->Get("CoordAxis", right);
            data->Get("CoordAxisSign", rightSign);
        }
        mUnit = double(unit) / 100;
        mAxis[0] = right, mAxis[1] = up, mAxis[2] = front;
        mSign[0] = rightSign, mSign[1] = upSign, mSign[2] = frontSign;
    }

    Vector toEngine(const aiVector3D& v) const {
        Vector result;
        for (unsigned i = 0; i < 3; ++i)
            result[i] = double(v[unsigned(mAxis[i])]) * mSign[i] * mUnit;
        return result;
    }

    static aiVector3D sample(const aiVectorKey* keys, unsigned count, double time) {
        unsigned i = 0;
        while (i < count && keys[i].mTime <= time)
            ++i;
        if (i == 0 || i == count)
            return keys[i == 0 ? 0 : count - 1].mValue;
        const double share = (time - keys[i - 1].mTime) / (keys[i].mTime - keys[i - 1].mTime);
        return keys[i - 1].mValue + (keys[i].mValue - keys[i - 1].mValue) * float(share);
    }

    static aiQuaternion sample(const aiQuatKey* keys, unsigned count, double time) {
        unsigned i = 0;
        while (i < count && keys[i].mTime <= time)
            ++i;
        aiQuaternion result;
        if (i == 0 || i == count) {
            result = keys[i == 0 ? 0 : count - 1].mValue;
        } else {
            const double share = (time - keys[i - 1].mTime) / (keys[i].mTime - keys[i - 1].mTime);
            aiQuaternion::Interpolate(result, keys[i - 1].mValue, keys[i].mValue, float(share));
        }
        return result.Normalize();
    }

    // The repetition that a channel may ask for, in ticks.
    template <class Key>
    static double wrap(const aiNodeAnim& channel, const Key* keys, unsigned count, double time) {
        const bool repeats =
            channel.mPreState == aiAnimBehaviour_REPEAT || channel.mPostState == aiAnimBehaviour_REPEAT;
        const double first = keys[0].mTime, span = keys[count - 1].mTime - first;
        if (!repeats || span <= 0)
            return time;
        return first + (time - first) - span * floor((time - first) / span);
    }

    aiMatrix4x4 localAt(const aiNode& node, double time) const {
        const auto found = mChannels.find(&node);
        if (found == mChannels.end())
            return node.mTransformation;
        const aiNodeAnim& channel = *found->second;
        const double ticks = time * rate();
        aiVector3D scale, position;
        aiQuaternion rotation;
        node.mTransformation.Decompose(scale, rotation, position);
        if (const unsigned count = channel.mNumPositionKeys)
            position =
                sample(channel.mPositionKeys, count, wrap(channel, channel.mPositionKeys, count, ticks));
        if (const unsigned count = channel.mNumRotationKeys)
            rotation =
                sample(channel.mRotationKeys, count, wrap(channel, channel.mRotationKeys, count, ticks));
        if (const unsigned count = channel.mNumScalingKeys)
            scale = sample(channel.mScalingKeys, count, wrap(channel, channel.mScalingKeys, count, ticks));
        aiMatrix4x4 translate, turn(rotation.GetMatrix()), stretch;
        return aiMatrix4x4::Translation(position, translate) * turn * aiMatrix4x4::Scaling(scale, stretch);
    }

    void visit(const aiNode& node, const aiMatrix4x4& parent, double time, World& world) const {
        const aiMatrix4x4 matrix = parent * localAt(node, time);
        world.names.push_back(node.mName.C_Str());
        world.nodes.push_back(toEngine(aiVector3D(matrix.a4, matrix.b4, matrix.c4)));
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            const aiMesh& mesh = *mScene->mMeshes[node.mMeshes[i]];
            for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
                const aiFace& face = mesh.mFaces[f];
                if (face.mNumIndices != 3)
                    continue;
                const aiVector3D* const v = mesh.mVertices;
                const unsigned* const c = face.mIndices;
                if (((v[c[1]] - v[c[0]]) ^ (v[c[2]] - v[c[0]])).Length() == 0)
                    continue;
                for (unsigned corner = 0; corner < 3; ++corner)
                    world.corners.push_back(toEngine(matrix * v[c[corner]]));
            }
        }
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            if (node.mChildren[i])
                visit(*node.mChildren[i], matrix, time, world);
    }

    Assimp::Importer mImporter;
    const aiScene* mScene = nullptr;
    std::map<const aiNode*, const aiNodeAnim*> mChannels;
    bool mComparable = true;
    double mUnit = 1;
    int mAxis[3], mSign[3];
};

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The engine's side: what an effect does with a scene.
class Engine {
public:
    explicit Engine(const std::string& image) {
        mManager.load(reinterpret_cast<const unsigned char*>(image.data()), int(image.size()));
        if (mManager.mScenes.size() != 1)
            throw std::runtime_error("it does not have one scene");
        for (o3d::Mesh* mesh : mManager.mMeshes) {
            for (const std::string& fault : mesh->findFaults())
                throw std::runtime_error("mesh '" + mesh->mName + "': " + fault);
            mesh->addNormals(); // aborts if it can't
            for (const o3d::Submesh* submesh : mesh->mSubmeshes)
                if (!mManager.getMaterial(mesh->getMaterial(submesh->mMaterial)))
                    throw std::runtime_error("a material is missing");
        }
    }

    World at(double time) const {
        World world;
        for (const o3d::SceneNode* child : mManager.mScenes[0]->mChildren)
            visit(*child, mathbase::Matrix4x4Col(), float(time), world);
        return world;
    }

private:
    void visit(const o3d::SceneNode& node, const mathbase::Matrix4x4Col& parent, float time,
               World& world) const {
        if (node.getType() == o3d::CHUNK_CAMERA || node.getType() == o3d::CHUNK_LIGHT)
            return;
        mathbase::Matrix4x4Col local, matrix = parent;
        node.calculateMatrix(time, local);
        matrix.multiplyFromRight(local);
        if (!endsWith(node.mName, ".shear") && node.mName.find(".part") == std::string::npos) {
            world.names.push_back(node.mName);
            world.nodes.push_back(
                Vector(double(matrix.mData[12]), double(matrix.mData[13]), double(matrix.mData[14])));
        }
        if (const auto* const instance = dynamic_cast<const o3d::MeshInstance*>(&node)) {
            const o3d::Mesh* const mesh = mManager.getMesh(instance->mMeshName);
            if (!mesh)
                throw std::runtime_error("a mesh is missing");
            for (const o3d::Submesh* submesh : mesh->mSubmeshes)
                for (const o3d::Triangle& triangle : submesh->mTriangles)
                    for (const int corner : triangle.mIndex) {
                        const mathbase::Vector3f v =
                            matrix * mesh->mVertices[size_t(submesh->mIndices[size_t(corner)].mValue)];
                        world.corners.push_back(Vector(double(v.x), double(v.y), double(v.z)));
                    }
        }
        for (const o3d::SceneNode* child : node.mChildren)
            visit(*child, matrix, time, world);
    }

    o3d::Manager mManager;
};

double sizeOf(const World& world) {
    Vector low(INFINITY, INFINITY, INFINITY), high(-INFINITY, -INFINITY, -INFINITY);
    for (const auto* list : {&world.nodes, &world.corners})
        for (const Vector& v : *list)
            for (unsigned i = 0; i < 3; ++i)
                if (std::isfinite(v[i])) {
                    low[i] = std::min(low[i], v[i]);
                    high[i] = std::max(high[i], v[i]);
                }
    // Far from the origin a scene is only as exact as floats are there.
    double reach = 0;
    for (unsigned i = 0; i < 3; ++i)
        reach = std::max({reach, fabs(low[i]), fabs(high[i])});
    return std::max({(high - low).Length(), reach * 1e-3, 1e-6});
}

// Equal, within the rounding of floats through the tree.
bool isFlat(const Vector* corners, double size) {
    const Vector ab = corners[1] - corners[0], ac = corners[2] - corners[0];
    return !((ab ^ ac).Length() > 1e-6 * size * std::max(ab.Length(), ac.Length()));
}

// A root without effect is left out.
void compareNodes(const World& expected, const World& found, double size, Comparison& result) {
    const size_t skip = expected.nodes.size() == found.nodes.size() + 1 ? 1 : 0;
    if (expected.nodes.size() != found.nodes.size() + skip)
        throw std::runtime_error("it has " + std::to_string(found.nodes.size()) + " nodes instead of " +
                                 std::to_string(expected.nodes.size()));
    for (size_t i = 0; i < found.nodes.size(); ++i) {
        if (found.names[i] != expected.names[i + skip])
            throw std::runtime_error("node '" + expected.names[i + skip] + "' is '" + found.names[i] + "'");
        if (!std::isfinite(expected.nodes[i + skip].SquareLength()))
            continue;
        const double off = (found.nodes[i] - expected.nodes[i + skip]).Length() / size;
        result.worst = std::max(result.worst, off);
        if (!(off <= SAME))
            throw std::runtime_error("node '" + found.names[i] + "' is off by " + std::to_string(off));
        ++result.nodes;
    }
}

// Triangles are in the same order. Those that the engine lacks have no area.
void compareCorners(const World& expected, const World& found, double size, Comparison& result) {
    size_t next = 0;
    for (size_t i = 0; i < expected.corners.size(); i += 3) {
        const Vector* const corners = &expected.corners[i];
        double off = INFINITY;
        if (next < found.corners.size()) {
            off = 0;
            for (size_t c = 0; c < 3; ++c)
                off = std::max(off, (found.corners[next + c] - corners[c]).Length() / size);
        }
        if (off <= SAME) {
            result.worst = std::max(result.worst, off);
            result.vertices += 3;
            next += 3;
        } else if (!isFlat(corners, size)) {
            throw std::runtime_error("triangle " + std::to_string(i / 3) + " is off by " +
                                     std::to_string(off));
        }
    }
    if (next != found.corners.size())
        throw std::runtime_error("it has " + std::to_string((found.corners.size() - next) / 3) +
                                 " triangles too many");
}

void compareWorlds(const std::string& path, const std::string& image, Comparison& result) {
    const Reference reference(path);
    const Engine engine(image);
    for (const double time : reference.times()) {
        const World expected = reference.at(time);
        const World found = engine.at(time);
        const double size = sizeOf(expected);
        compareNodes(expected, found, size, result);
        compareCorners(expected, found, size, result);
        ++result.times;
    }
}

} // namespace

Comparison compareImport(const std::string& path) {
    Comparison result;
    importer::Conversion conversion;
    try {
        const importer::Model model = importer::readModel(path, {SECONDS, MEGABYTES});
        result.format = model.format;
        conversion =
            importer::convert(model, importer::Options(), std::filesystem::path(path).stem().string());
    } catch (const std::exception& exception) {
        result.refused = true;
        result.problem = exception.what();
        return result;
    }
    result.counts = conversion.counts;
    result.losses = conversion.losses.size();
    try {
        const std::string answer = importer::inChild(
            [&] {
                Comparison inner;
                compareWorlds(path, conversion.image, inner);
                std::string bytes(sizeof(double) + 3 * sizeof(size_t), '\0');
                memcpy(bytes.data(), &inner.worst, sizeof(double));
                const size_t counts[3] = {inner.vertices, inner.nodes, inner.times};
                memcpy(bytes.data() + sizeof(double), counts, sizeof counts);
                return bytes;
            },
            SECONDS, MEGABYTES);
        size_t counts[3];
        memcpy(&result.worst, answer.data(), sizeof(double));
        memcpy(counts, answer.data() + sizeof(double), sizeof counts);
        result.vertices = counts[0];
        result.nodes = counts[1];
        result.times = counts[2];
    } catch (const std::exception& exception) {
        result.problem = exception.what();
    }
    return result;
}

} // namespace zentrak::test
