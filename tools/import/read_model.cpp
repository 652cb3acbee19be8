#include "import/read_model.h"

#include "import/child.h"
#include "import/gltf_modes.h"
#include "import/transfer.h"

#include <algorithm>
#include <assimp/DefaultLogger.hpp>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cmath>
#include <cstring>
#include <iterator>
#include <new>
#include <numbers>
#include <set>
#include <stdexcept>

namespace zentrak::importer {

const unsigned READ_FLAGS =
    aiProcess_Triangulate | aiProcess_GenSmoothNormals | aiProcess_TransformUVCoords | aiProcess_SortByPType;

namespace {

constexpr double TICKS_PER_SECOND = 25; // if the file doesn't say
constexpr size_t MOST_WARNINGS = 20;
// The uses of pictures, by aiTextureType. The function that names them differs between versions of assimp.
constexpr const char* USES[] = {
    "n/a",       "diffuse",      "specular",      "ambient",      "emissive",         "height",
    "normals",   "shininess",    "opacity",       "displacement", "lightmap",         "reflection",
    "basecolor", "normalcamera", "emissioncolor", "metalness",    "diffuseroughness", "ambientocclusion",
    "unknown",   "sheen",        "clearcoat",     "transmission"};
// Faces without normals are smooth where they meet at less than this, in degrees.
constexpr float CREASE = 50.0f;

// Collects assimp's warnings.
class Warnings : public Assimp::LogStream {
public:
    explicit Warnings(std::vector<std::string>& list) : mList(list) {}
    void write(const char* message) override {
        std::string text = message;
        while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
            text.pop_back();
        const size_t start = text.find(": ");
        if (start != std::string::npos)
            text.erase(0, start + 2);
        if (mSeen.insert(text).second && mList.size() < MOST_WARNINGS)
            mList.push_back(text);
    }

private:
    std::vector<std::string>& mList;
    std::set<std::string> mSeen;
};

std::string toText(const aiString& text) {
    return std::string(text.C_Str(), strnlen(text.C_Str(), text.length));
}

template <class T>
Vector toVector(const aiVector3t<T>& v) {
    return Vector(double(v.x), double(v.y), double(v.z));
}

bool isFinite(const Vector& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

void addFaces(const aiMesh& mesh, Part& part) {
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace& face = mesh.mFaces[i];
        if (face.mNumIndices == 1)
            ++part.points;
        else if (face.mNumIndices == 2)
            ++part.lines;
        if (face.mNumIndices != 3)
            continue;
        const unsigned* const v = face.mIndices;
        if (std::max({v[0], v[1], v[2]}) >= mesh.mNumVertices)
            ++part.badTriangles;
        else
            part.triangles.push_back({v[0], v[1], v[2]});
    }
    // A cloud of points has no faces at all.
    if (mesh.mNumFaces == 0)
        part.points = mesh.mNumVertices;
}

Part toPart(const aiMesh& mesh) {
    Part part;
    part.name = toText(mesh.mName);
    part.material = mesh.mMaterialIndex;
    const bool normals = mesh.HasNormals(), textured = mesh.HasTextureCoords(0);
    if (mesh.HasPositions())
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            const aiVector3D& p = mesh.mVertices[i];
            part.positions.push_back({p.x, p.y, p.z});
            if (normals)
                part.normals.push_back({mesh.mNormals[i].x, mesh.mNormals[i].y, mesh.mNormals[i].z});
            if (textured)
                part.texCoords.push_back({mesh.mTextureCoords[0][i].x, mesh.mTextureCoords[0][i].y});
        }
    if (mesh.HasPositions())
        addFaces(mesh, part);
    part.bones = mesh.mNumBones;
    part.morphs = mesh.mNumAnimMeshes;
    part.texCoordSets = mesh.GetNumUVChannels();
    part.colors = mesh.GetNumColorChannels() > 0;
    part.depthCoords = textured && mesh.mNumUVComponents[0] == 3;
    return part;
}

// Parents first, children in their order, without recursion.
void addNodes(const aiScene& scene, Model& model) {
    std::vector<std::pair<const aiNode*, int32_t>> open{{scene.mRootNode, -1}};
    while (!open.empty()) {
        const auto [source, parent] = open.back();
        open.pop_back();
        Node node;
        node.name = toText(source->mName);
        node.parent = parent;
        for (unsigned row = 0; row < 4; ++row)
            for (unsigned column = 0; column < 4; ++column)
                node.matrix[row][column] = double(source->mTransformation[row][column]);
        for (unsigned i = 0; i < source->mNumMeshes; ++i)
            if (source->mMeshes[i] < scene.mNumMeshes)
                node.parts.push_back(source->mMeshes[i]);
        const int32_t index = int32_t(model.nodes.size());
        model.nodes.push_back(std::move(node));
        for (unsigned i = source->mNumChildren; i-- > 0;)
            if (source->mChildren[i])
                open.emplace_back(source->mChildren[i], index);
    }
}

Surface toSurface(const aiMaterial& material) {
    Surface surface;
    surface.name = toText(const_cast<aiMaterial&>(material).GetName());
    float opacity = 1.0f;
    material.Get(AI_MATKEY_OPACITY, opacity);
    const auto addColor = [&](const char* kind, const char* key) {
        aiColor4D color;
        if (aiGetMaterialColor(&material, key, 0, 0, &color) != aiReturn_SUCCESS)
            return false;
        surface.colors.push_back({kind, {color.r, color.g, color.b, color.a * opacity}});
        return true;
    };
    if (!addColor("diffuse", "$clr.base"))
        addColor("diffuse", "$clr.diffuse");
    addColor("specular", "$clr.specular");
    addColor("emissive", "$clr.emissive");
    for (size_t type = aiTextureType_DIFFUSE; type < std::size(USES); ++type) {
        const auto kind = static_cast<aiTextureType>(type);
        for (unsigned i = 0; i < material.GetTextureCount(kind); ++i) {
            aiString file;
            if (material.GetTexture(kind, i, &file) == aiReturn_SUCCESS)
                surface.textures.push_back({USES[type], toText(file)});
        }
    }
    return surface;
}

// Some versions of assimp multiply glTF's vertical angle by the aspect, others do it by the tangents.
bool multipliesAngles() {
    static const char probe[] = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"camera":0}],"cameras":[{"type":"perspective",
        "perspective":{"yfov":1,"aspectRatio":2,"znear":1}}]})";
    Assimp::Importer importer;
    const aiScene* const scene = importer.ReadFileFromMemory(probe, sizeof probe - 1, 0, "gltf");
    return scene && scene->mNumCameras == 1 && scene->mCameras[0]->mHorizontalFOV == 2.0f;
}

// assimp stores the horizontal angle. Without an aspect it is the vertical one in glTF, whose reader passes
// it through; in other formats it is taken to be for a picture of 16:10.
double verticalAngle(const aiCamera& camera, bool isGltf) {
    const double angle = double(camera.mHorizontalFOV);
    const double aspect = camera.mAspect > 0 ? double(camera.mAspect) : isGltf ? 1.0 : 1.6;
    if (isGltf && multipliesAngles())
        return angle / aspect;
    if (!(angle > 0) || angle >= std::numbers::pi)
        return 0;
    return 2 * atan(tan(angle / 2) / aspect);
}

void addCameras(const aiScene& scene, Model& model) {
    const bool isGltf = model.format.find("glTF") != std::string::npos;
    for (unsigned i = 0; i < scene.mNumCameras; ++i) {
        const aiCamera& source = *scene.mCameras[i];
        CameraData camera;
        camera.name = toText(source.mName);
        // A glTF camera is at its node's position, which the reader repeats here.
        camera.position = isGltf ? Vector() : toVector(source.mPosition);
        camera.direction = toVector(source.mLookAt);
        camera.up = toVector(source.mUp);
        camera.angle = verticalAngle(source, isGltf);
        camera.orthographic = source.mOrthographicWidth > 0;
        model.cameras.push_back(camera);
    }
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        const aiLight& source = *scene.mLights[i];
        LightData light;
        light.name = toText(source.mName);
        light.position = toVector(source.mPosition);
        light.direction = toVector(source.mDirection);
        light.color = {source.mColorDiffuse.r, source.mColorDiffuse.g, source.mColorDiffuse.b};
        light.ambient = source.mType == aiLightSource_AMBIENT;
        if (source.mType == aiLightSource_SPOT)
            light.angle = double(source.mAngleOuterCone);
        model.lights.push_back(light);
    }
}

// Returns whether they had to be sorted.
template <class Key>
bool sortKeys(std::vector<Key>& keys) {
    const auto earlier = [](const Key& a, const Key& b) { return a.time < b.time; };
    std::erase_if(keys, [](const Key& key) { return !std::isfinite(key.time); });
    const bool disordered = !std::is_sorted(keys.begin(), keys.end(), earlier);
    std::stable_sort(keys.begin(), keys.end(), earlier);
    return disordered;
}

bool addKeys(const aiVectorKey* source, unsigned count, double rate, std::vector<VectorKey>& keys) {
    for (unsigned i = 0; source && i < count; ++i)
        if (isFinite(toVector(source[i].mValue)))
            keys.push_back({source[i].mTime / rate, toVector(source[i].mValue)});
    return sortKeys(keys);
}

bool addKeys(const aiQuatKey* source, unsigned count, double rate, std::vector<QuaternionKey>& keys) {
    for (unsigned i = 0; source && i < count; ++i) {
        const aiQuaternion& q = source[i].mValue;
        Quaternion value(double(q.w), double(q.x), double(q.y), double(q.z));
        const double length =
            sqrt(value.w * value.w + value.x * value.x + value.y * value.y + value.z * value.z);
        if (!std::isfinite(length) || length < 1e-12)
            continue;
        value.Normalize();
        keys.push_back({source[i].mTime / rate, value});
    }
    return sortKeys(keys);
}

Beyond toBeyond(aiAnimBehaviour behaviour) {
    return behaviour == aiAnimBehaviour_REPEAT   ? Beyond::REPEAT
           : behaviour == aiAnimBehaviour_LINEAR ? Beyond::EXTRAPOLATE
                                                 : Beyond::HOLD;
}

Animation toAnimation(const aiAnimation& source) {
    Animation animation;
    const double rate = source.mTicksPerSecond > 0 ? source.mTicksPerSecond : TICKS_PER_SECOND;
    animation.name = toText(source.mName);
    animation.length = source.mDuration / rate;
    for (unsigned i = 0; i < source.mNumChannels; ++i) {
        const aiNodeAnim& from = *source.mChannels[i];
        Channel channel;
        channel.node = toText(from.mNodeName);
        const bool sorted[] = {
            addKeys(from.mPositionKeys, from.mNumPositionKeys, rate, channel.positions),
            addKeys(from.mRotationKeys, from.mNumRotationKeys, rate, channel.rotations),
            addKeys(from.mScalingKeys, from.mNumScalingKeys, rate, channel.scales),
        };
        channel.disordered = sorted[0] || sorted[1] || sorted[2];
        channel.before = toBeyond(from.mPreState);
        channel.after = toBeyond(from.mPostState);
        animation.channels.push_back(std::move(channel));
    }
    for (unsigned i = 0; i < source.mNumMeshChannels; ++i)
        animation.others.push_back(toText(source.mMeshChannels[i]->mName));
    for (unsigned i = 0; i < source.mNumMorphMeshChannels; ++i)
        animation.others.push_back(toText(source.mMorphMeshChannels[i]->mName));
    return animation;
}

// Each value stays until the next key.
template <class Key>
void hold(std::vector<Key>& keys) {
    std::vector<Key> held;
    for (const Key& key : keys) {
        if (!held.empty())
            held.push_back({key.time, held.back().value});
        held.push_back(key);
    }
    keys = held;
}

void setKeyModes(const std::vector<KeyModes>& modes, Animation& animation) {
    for (const KeyModes& mode : modes)
        for (Channel& channel : animation.channels) {
            if (channel.node != mode.node)
                continue;
            if (mode.mode == KeyMode::CUBIC)
                channel.curved = 1;
            else if (mode.path == "translation")
                hold(channel.positions);
            else if (mode.path == "rotation")
                hold(channel.rotations);
            else if (mode.path == "scale")
                hold(channel.scales);
        }
}

// Only FBX specifies its axes; the readers of the other formats turn the root themselves.
void setAxes(const aiScene& scene, Model& model) {
    if (!scene.mMetaData)
        return;
    float unit = 0; // the type matters: assimp finds nothing for another
    if (scene.mMetaData->Get("UnitScaleFactor", unit) && unit > 0 && std::isfinite(unit))
        model.unit = double(unit) * 0.01; // from centimetres
    static const char* const names[3] = {"CoordAxis", "UpAxis", "FrontAxis"};
    Matrix3 axes(0, 0, 0, 0, 0, 0, 0, 0, 0);
    for (unsigned row = 0; row < 3; ++row) {
        int32_t axis = -1, sign = 1;
        if (!scene.mMetaData->Get(names[row], axis) || axis < 0 || axis > 2)
            return;
        scene.mMetaData->Get(names[row] + std::string("Sign"), sign);
        axes[row][axis] = sign < 0 ? -1 : 1;
    }
    if (fabs(axes.Determinant()) == 1)
        model.axes = axes;
}

Model read(const std::string& path) {
    Model model;
    Assimp::DefaultLogger::create(nullptr, Assimp::Logger::NORMAL, 0);
    Assimp::DefaultLogger::get()->attachStream(new Warnings(model.warnings),
                                               Assimp::Logger::Warn | Assimp::Logger::Err);
    Assimp::Importer importer;
    importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, CREASE);
    const aiScene* const scene = importer.ReadFile(path, READ_FLAGS);
    if (!scene || !scene->mRootNode) {
        std::string problem = importer.GetErrorString();
        if (problem.find("bad_alloc") != std::string::npos)
            throw std::bad_alloc();
        if (problem.find("No suitable reader found") != std::string::npos)
            problem = "it is of no kind that assimp knows";
        while (!problem.empty() && (problem.back() == '\n' || problem.back() == ' '))
            problem.pop_back();
        // The caller names the path.
        for (size_t at; (at = problem.find(path)) != std::string::npos;)
            problem.replace(at, path.size(), "the file");
        throw std::runtime_error(problem.empty() ? "assimp can't read it" : problem);
    }
    const int number = importer.GetPropertyInteger("importerIndex", -1);
    if (const aiImporterDesc* const kind = importer.GetImporterInfo(size_t(number)))
        model.format = kind->mName;
    model.name = toText(scene->mName);
    setAxes(*scene, model);
    addNodes(*scene, model);
    for (unsigned i = 0; i < scene->mNumMeshes; ++i)
        model.parts.push_back(toPart(*scene->mMeshes[i]));
    for (unsigned i = 0; i < scene->mNumMaterials; ++i)
        model.surfaces.push_back(toSurface(*scene->mMaterials[i]));
    addCameras(*scene, model);
    for (unsigned i = 0; i < scene->mNumAnimations; ++i)
        model.animations.push_back(toAnimation(*scene->mAnimations[i]));
    if (model.format.find("glTF2") != std::string::npos && !model.animations.empty()) {
        const auto modes = readKeyModes(path);
        for (size_t i = 0; i < std::min(modes.size(), model.animations.size()); ++i)
            setKeyModes(modes[i], model.animations[i]);
    }
    return model;
}

} // namespace

Model readModel(const std::string& path, const Limits& limits) {
    return fromBytes(inChild(
        [&path] {
            Model model = read(path);
            return toBytes(model);
        },
        limits.seconds, limits.megabytes));
}

} // namespace zentrak::importer
