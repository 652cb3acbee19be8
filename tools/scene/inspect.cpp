#include "inspect.h"

#include "cl_readbuffer.h"
#include "command/command.h"
#include "o3d_chunk.h"
#include "o3d_manager.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <set>

namespace zentrak::scene {

namespace {

using chunklib::ReadBuffer;
using command::format;

// Where a chunk may appear, one bit each.
enum Place : unsigned {
    TOP = 1,
    MAIN = 2,
    MESH = 4,
    SUBMESH = 8,
    NODE = 16, // any node
    CAMERA = 32,
    INSTANCE = 64,
    LIGHT = 128,
    ARMATURE = 256,
    BONE = 512,
    MATERIAL = 1024,
    ATTRIBUTE = 2048,
    TEXTURE = 4096,
    IMAGE = 8192,
    TRACK1 = 16384, // tracks by their number of components
    TRACK3 = 32768,
    TRACK4 = 65536
};

// The payload before the children.
enum Payload {
    NOTHING,
    NAME,     // a text
    TWONAMES, // two texts
    BYTE,
    FLOATS, // as many as fit
    VECTORS,
    TRIANGLES,
    INDICES,
    TEXTS,    // back to back, each appended to the one before
    NUMBERED, // a byte and a text
    KEYS,
    BONEVALUES
};

struct Kind {
    uint16_t id;
    const char* name;
    unsigned parents; // where the loader accepts it
    Payload payload;
    unsigned inside; // the place of its own children; 0 for none
};

const Kind kinds[] = {
    {o3d::CHUNK_MAIN, "main", TOP, NOTHING, MAIN},
    {o3d::CHUNK_MESH, "mesh", MAIN, NAME, MESH},
    {o3d::CHUNK_VERTICES, "vertices", MESH, VECTORS, 0},
    {o3d::CHUNK_SUBMESH, "submesh", MESH, BYTE, SUBMESH},
    {o3d::CHUNK_TRIANGLES, "triangles", SUBMESH, TRIANGLES, 0},
    {o3d::CHUNK_INDICES, "indices", SUBMESH, INDICES, 0},
    {o3d::CHUNK_TEXCOORDS, "texture coordinates", SUBMESH, VECTORS, 0},
    {o3d::CHUNK_MATERIALNAMES, "material names", MESH, TEXTS, 0},
    {o3d::CHUNK_BONEGROUP, "bone group", MESH, NOTHING, 0},
    {o3d::CHUNK_MATERIAL, "material", MAIN, NAME, MATERIAL},
    {o3d::CHUNK_MATERIALFLAG1, "first flag", MATERIAL, BYTE, 0},
    {o3d::CHUNK_MATERIALFLAG2, "second flag", MATERIAL, BYTE, 0},
    {o3d::CHUNK_ATTRIBUTE, "attribute", MATERIAL, NAME, ATTRIBUTE},
    {o3d::CHUNK_DEFAULT4, "colour", ATTRIBUTE, FLOATS, 0},
    {o3d::CHUNK_TEXTURE, "texture", ATTRIBUTE, NAME, TEXTURE},
    {o3d::CHUNK_IMAGENAME, "image name", TEXTURE, NAME, 0},
    {o3d::CHUNK_TEXTUREVALUE, "value", TEXTURE, BYTE, 0},
    {o3d::CHUNK_IMAGE, "image", MAIN, NAME, IMAGE},
    {o3d::CHUNK_FILENAME, "file name", IMAGE, NAME, 0},
    {o3d::CHUNK_SCENE, "scene", MAIN, NAME, NODE},
    {o3d::CHUNK_CAMERA, "camera", NODE, NAME, NODE | CAMERA},
    {o3d::CHUNK_MESHINSTANCE, "mesh instance", NODE, TWONAMES, NODE | INSTANCE},
    {o3d::CHUNK_DUMMY, "dummy", NODE, NAME, NODE},
    {o3d::CHUNK_LIGHT, "light", NODE, NAME, NODE | LIGHT},
    {o3d::CHUNK_ARMATURE, "armature", NODE, NAME, NODE | ARMATURE},
    {o3d::CHUNK_BONE, "bone", ARMATURE | BONE, BONEVALUES, BONE},
    {o3d::CHUNK_MATERIALOVERRIDE, "material override", INSTANCE, NUMBERED, 0},
    {o3d::CHUNK_POSITION, "position", NODE, NOTHING, TRACK3},
    {o3d::CHUNK_ROTATION, "rotation", NODE, NOTHING, TRACK3},
    {o3d::CHUNK_SCALE, "scale", NODE, NOTHING, TRACK3},
    {o3d::CHUNK_COLOR, "colour", LIGHT, NOTHING, TRACK4},
    {o3d::CHUNK_ANGLE, "angle", CAMERA | LIGHT, NOTHING, TRACK1},
    {o3d::CHUNK_LIGHTTRACK1, "first track", LIGHT, NOTHING, TRACK1},
    {o3d::CHUNK_LIGHTTRACK2, "second track", LIGHT, NOTHING, TRACK1},
    {o3d::CHUNK_LIGHTFLAG, "flag", LIGHT, BYTE, 0},
    {o3d::CHUNK_BONEROTATION, "rotation", BONE, NOTHING, TRACK4},
    {o3d::CHUNK_DEFAULT1, "default", TRACK1, FLOATS, 0},
    {o3d::CHUNK_DEFAULT3, "default", TRACK3, FLOATS, 0},
    {o3d::CHUNK_DEFAULT4, "default", TRACK4, FLOATS, 0},
    {o3d::CHUNK_KEYS0, "keys of component 0", TRACK4, KEYS, 0},
    {o3d::CHUNK_KEYS1, "keys of component 0", TRACK1 | TRACK3, KEYS, 0},
    {o3d::CHUNK_KEYS1, "keys of component 1", TRACK4, KEYS, 0},
    {o3d::CHUNK_KEYS2, "keys of component 1", TRACK3, KEYS, 0},
    {o3d::CHUNK_KEYS2, "keys of component 2", TRACK4, KEYS, 0},
    {o3d::CHUNK_KEYS3, "keys of component 2", TRACK3, KEYS, 0},
    {o3d::CHUNK_KEYS3, "keys of component 3", TRACK4, KEYS, 0},
};

// A printable name: without control characters, and truncated.
std::string quoted(const std::string& name) {
    std::string result = "'";
    for (const char character : name.substr(0, 100))
        result += static_cast<unsigned char>(character) < 32 ? '?' : character;
    return result + (name.size() > 100 ? "...'" : "'");
}

class Inspector {
public:
    explicit Inspector(const std::string& image)
        : mImage(image), mBuffer(image.data(), int(std::min<size_t>(image.size(), INT_MAX))) {}

    Inspection run() {
        if (mBuffer.getFormat() != "void") // nothing was read
            mText += format("%s %d.%d, ", quoted(mBuffer.getFormat()).c_str(), mBuffer.getVersionFirst(),
                            mBuffer.getVersionSecond());
        mText += format("%zu bytes\n", mImage.size());
        if (mBuffer.getFormat() != o3d::FORMAT || mBuffer.getVersionFirst() != o3d::VERSION_FIRST ||
            mBuffer.getVersionSecond() != o3d::VERSION_SECOND) {
            remark(0, "the loader refuses this format or version: it takes %s %d.%d",
                   quoted(o3d::FORMAT).c_str(), o3d::VERSION_FIRST, o3d::VERSION_SECOND);
            return {mText, mRemarks};
        }
        const uint16_t id = mBuffer.openChunk();
        if (id != o3d::CHUNK_MAIN) {
            remark(0, "the loader refuses the file: its first chunk is 0x%04X and not the main chunk", id);
            return {mText, mRemarks};
        }
        const size_t end = std::min<size_t>(mBuffer.mChunks.back().mEnd, mImage.size());
        chunk(id, TOP, 0);
        const uint16_t last = mBuffer.mChunks.back().mId;
        if (last != o3d::CHUNK_MAIN && last != 0 && mBuffer.mPosition < end)
            remark(0, "the last %zu bytes of the main chunk are not loaded", end - mBuffer.mPosition);
        if (end < mImage.size())
            remark(0, "%zu bytes after the main chunk are not loaded", mImage.size() - end);
        references();
        return {mText, mRemarks};
    }

private:
    template <typename... T>
    void remark(size_t depth, const char* pattern, T... values) {
        ++mRemarks;
        char text[600];
        snprintf(text, sizeof text, pattern, values...);
        mText += std::string(2 * std::min<size_t>(depth, 40), ' ') + "! " + text + "\n";
    }
    void remark(size_t depth, const char* text) { remark(depth, "%s", text); }

    // As in the loader: up to the zero byte or the end of the chunk.
    std::string name() {
        std::string result;
        while (mBuffer.checkBoundaries(1)) {
            char character = 0;
            mBuffer.loadType(&character, 1);
            if (character == '\0')
                return result;
            result += character;
        }
        mPending.push_back("the name has no zero byte at its end");
        return result;
    }

    static const Kind* find(uint16_t id, unsigned place) {
        for (const Kind& kind : kinds)
            if (kind.id == id && (kind.parents & place) != 0)
                return &kind;
        return nullptr;
    }

    // Describes the payload of the open chunk; leaves remarks on it in mPending.
    std::string describe(const Kind& kind) {
        switch (kind.payload) {
        case NOTHING:
            return kind.id == o3d::CHUNK_BONEGROUP ? " (the loader skips it)" : "";
        case NAME:
            return " " + quoted(name());
        case TWONAMES: {
            const std::string first = name();
            return " " + quoted(first) + " of mesh " + quoted(name());
        }
        case BYTE: {
            unsigned char byte = 0;
            if (!mBuffer.checkBoundaries(1))
                mPending.push_back("the byte is missing");
            mBuffer.loadType(&byte, 1);
            return kind.id == o3d::CHUNK_SUBMESH ? format(", material number %d", byte)
                                                 : format(": %d", byte);
        }
        case FLOATS: {
            std::string text = ":";
            for (uint32_t i = 0; i < mBuffer.currentChunkSize() / 4 && i < 4; ++i) {
                float value = 0;
                if (!mBuffer.checkBoundaries(4)) {
                    mPending.push_back("a value is missing");
                    break;
                }
                mBuffer.loadType(&value, 4);
                text += format(" %g", double(value));
            }
            return text;
        }
        case VECTORS:
            return count(12);
        case TRIANGLES:
            return count(13);
        case INDICES:
            return count(4);
        case TEXTS:
            return names();
        case NUMBERED: {
            unsigned char number = 0;
            mBuffer.loadType(&number, 1);
            return format(" of number %d by ", number) + quoted(name());
        }
        case KEYS:
            return keys();
        case BONEVALUES: {
            const std::string text = quoted(name());
            float values[8] = {0, 0, 0, 1, 0, 0, 0, 0};
            if (!mBuffer.checkBoundaries(32))
                mPending.push_back("values of the bone are missing");
            for (float& value : values)
                mBuffer.loadType(&value, 4);
            return " " + text +
                   format(", head %g %g %g, length %g", double(values[0]), double(values[1]),
                          double(values[2]), double(values[7]));
        }
        }
        return "";
    }

    std::string count(uint32_t size) {
        const uint32_t claimed = mBuffer.currentChunkSize();
        const uint32_t present = std::min(claimed, mBuffer.remaining());
        if (present < claimed)
            mPending.push_back(format("%u were claimed", claimed / size));
        else if (claimed % size != 0)
            mPending.push_back(format("%u bytes at the end are no whole element", claimed % size));
        return format(": %u", present / size);
    }

    std::string names() {
        std::string text = ":", accumulated;
        int shown = 0;
        size_t count = 0;
        bool open = false;
        while (mBuffer.checkBoundaries(1)) {
            char character = 0;
            mBuffer.loadType(&character, 1);
            open = character != '\0';
            if (open) {
                accumulated += character;
                continue;
            }
            ++count;
            if (++shown <= 20)
                text += " " + quoted(accumulated);
        }
        if (count > 20)
            text += format(" and %zu more", count - 20);
        if (open)
            mPending.push_back("the last name has no zero byte and is dropped");
        return text;
    }

    std::string keys() {
        static const char* const interpolations[] = {"constant", "linear", "Bezier"};
        static const char* const extrapolations[] = {"constant", "linear", "cyclic", "cyclic with offset"};
        unsigned char interpolation = 0, extrapolation = 0;
        mBuffer.loadType(&interpolation, 1);
        mBuffer.loadType(&extrapolation, 1);
        const uint32_t claimed = mBuffer.currentChunkSize() < 2 ? 0 : (mBuffer.currentChunkSize() - 2) / 24;
        const uint32_t present = std::min(claimed, mBuffer.remaining() / 24);
        if (interpolation > 2)
            mPending.push_back(format("interpolation mode %d is none: it acts as constant", interpolation));
        if (extrapolation > 3)
            mPending.push_back(format("extrapolation mode %d is none", extrapolation));
        if (present < claimed)
            mPending.push_back(format("%u keys were claimed", claimed));
        float first[6] = {}, key[6] = {}, lowest = 0, highest = 0;
        bool ascending = true;
        for (uint32_t i = 0; i < present; ++i) {
            const float before = key[2];
            mBuffer.loadType(key, 24);
            if (i == 0)
                std::copy(key, key + 6, first);
            else if (!(key[2] > before))
                ascending = false;
            lowest = i == 0 ? key[3] : std::min(lowest, key[3]);
            highest = i == 0 ? key[3] : std::max(highest, key[3]);
        }
        if (!ascending)
            mPending.push_back("the times of the keys do not ascend");
        std::string text = format(": %u, %s, beyond them %s", present,
                                  interpolation > 2 ? "constant" : interpolations[interpolation],
                                  extrapolation > 3 ? "none" : extrapolations[extrapolation]);
        if (present > 0)
            text += format(", time %g to %g, value %g to %g", double(first[2]), double(key[2]),
                           double(lowest), double(highest));
        return text;
    }

    // The open chunk and its contents.
    void chunk(uint16_t id, unsigned place, size_t depth) {
        const std::string indent(2 * std::min<size_t>(depth, 40), ' ');
        const Kind* const kind = find(id, place);
        const uint32_t claimed = mBuffer.currentChunkSize();
        const uint32_t start = mBuffer.mPosition;
        if (kind == nullptr) {
            mText += indent + format("0x%04X, %u bytes\n", id, claimed);
            remark(depth, "the loader does not know it here and skips it");
        } else {
            const std::string words = describe(*kind);
            mText += indent + format("%s 0x%04X%s", kind->name, id, words.substr(0, 400).c_str()) +
                     (kind->inside != 0 ? format(", %u bytes", claimed) : "") + "\n";
        }
        if (uint64_t(start) + claimed > mImage.size())
            remark(depth, "it reaches %llu bytes past the end of the file",
                   static_cast<unsigned long long>(uint64_t(start) + claimed - mImage.size()));
        else if (mBuffer.depth() > 1 && start + claimed > mBuffer.mChunks[mBuffer.depth() - 2].mEnd)
            remark(depth, "it reaches %u bytes past the end of the chunk around it",
                   start + claimed - mBuffer.mChunks[mBuffer.depth() - 2].mEnd);
        for (const std::string& text : mPending)
            remark(depth, "%s", text.c_str());
        mPending.clear();
        if (kind == nullptr || kind->inside == 0)
            return;
        if (kind->id == o3d::CHUNK_SUBMESH && !mSawVertices)
            remark(depth, "it comes before the vertices of its mesh: its box is lost");
        if (kind->id == o3d::CHUNK_MESH)
            mSawVertices = false;

        size_t open = mBuffer.depth();
        while (const uint16_t child = mBuffer.openChunk()) {
            if (child == o3d::CHUNK_VERTICES)
                mSawVertices = true;
            if (mBuffer.depth() > o3d::MAX_DEPTH)
                remark(depth + 1, "0x%04X lies too deep, and the loader leaves it out", child);
            else
                chunk(child, kind->inside, depth + 1);
            mBuffer.closeChunk();
            open = mBuffer.depth();
        }
        // As in the loader, a chunk with ID 0 stays open: the caller closes it instead of this one.
        if (mBuffer.depth() > open)
            remark(depth + 1, depth == 0 ? "a chunk with ID 0 ends the loading here"
                                         : "a chunk with ID 0: what follows it is read as part of the chunk "
                                           "around this one");
        else if (mBuffer.remaining() > 0)
            remark(depth + 1, "%u bytes at its end are no chunk", mBuffer.remaining());
    }

    // Errors that only show in context: names without a target, indices out of range.
    void references() {
        o3d::Manager manager;
        try {
            manager.load(reinterpret_cast<const unsigned char*>(mImage.data()),
                         int(std::min<size_t>(mImage.size(), INT_MAX)));
        } catch (const std::exception& exception) {
            remark(0, "%s", exception.what());
            return;
        }
        if (manager.mScenes.empty())
            remark(0, "there is no scene");
        duplicates(manager);
        for (const o3d::Mesh* mesh : manager.mMeshes)
            checkMesh(*mesh);
        for (const o3d::Material* material : manager.mMaterials)
            for (const auto* attribute : material->mAttributes)
                for (const o3d::Texture* texture : attribute->mTextures)
                    if (manager.getImage(texture->mImageName) == nullptr)
                        remark(0, "texture %s of material %s: there is no image %s",
                               quoted(texture->mName).c_str(), quoted(material->mName).c_str(),
                               quoted(texture->mImageName).c_str());
        for (const o3d::Scene* scene : manager.mScenes) {
            if (std::none_of(scene->mChildren.begin(), scene->mChildren.end(),
                             [](const o3d::SceneNode* node) { return node->getType() == o3d::CHUNK_CAMERA; }))
                mText += "scene " + quoted(scene->mName) + " has no camera among its direct children\n";
            checkNode(manager, *scene, *scene, false);
            mText += "scene " + quoted(scene->mName) +
                     format(" is animated up to time %g\n", double(scene->getAnimationLength()));
        }
    }

    void duplicates(const o3d::Manager& manager) {
        std::set<std::string> seen;
        for (const o3d::Mesh* mesh : manager.mMeshes)
            if (!seen.insert(mesh->mName).second)
                remark(0, "mesh %s is there more than once: the last is found", quoted(mesh->mName).c_str());
        seen.clear();
        for (const o3d::Material* material : manager.mMaterials)
            if (!seen.insert(material->mName).second)
                remark(0, "material %s is there more than once: the last is found",
                       quoted(material->mName).c_str());
    }

    void checkMesh(const o3d::Mesh& mesh) {
        if (mesh.mSubmeshes.empty())
            return; // vertices alone need no normals
        try {
            for (const std::string& text : mesh.findFaults())
                remark(0, "mesh %s: %s", quoted(mesh.mName).c_str(), text.c_str());
        } catch (const std::exception& exception) {
            remark(0, "%s", exception.what());
        }
    }

    void checkNode(const o3d::Manager& manager, const o3d::Scene& scene, const o3d::SceneNode& node,
                   bool belowCamera) {
        if (const auto* instance = dynamic_cast<const o3d::MeshInstance*>(&node)) {
            if (belowCamera)
                remark(0, "mesh instance %s is below a camera and is not drawn",
                       quoted(instance->mName).c_str());
            checkInstance(manager, *instance);
        }
        const bool isCamera = node.getType() == o3d::CHUNK_CAMERA;
        if (isCamera &&
            std::find(scene.mChildren.begin(), scene.mChildren.end(), &node) == scene.mChildren.end())
            remark(0, "camera %s is not a direct child of the scene: no effect finds it",
                   quoted(node.mName).c_str());
        for (const o3d::SceneNode* child : node.mChildren)
            checkNode(manager, scene, *child, belowCamera || isCamera);
    }

    // Drawing an instance looks up the material of each Submesh, first the instance's own.
    void checkInstance(const o3d::Manager& manager, const o3d::MeshInstance& instance) {
        const std::string name = quoted(instance.mName);
        const o3d::Mesh* mesh = manager.getMesh(instance.mMeshName);
        if (mesh == nullptr) {
            remark(0, "mesh instance %s: there is no mesh %s", name.c_str(),
                   quoted(instance.mMeshName).c_str());
            return;
        }
        std::set<std::string> materials(instance.mMaterials.begin(), instance.mMaterials.end());
        for (const o3d::Submesh* submesh : mesh->mSubmeshes) {
            std::string material = instance.getMaterial(submesh->mMaterial);
            if (material.empty())
                material = mesh->getMaterial(submesh->mMaterial);
            if (material.empty())
                remark(0, "mesh instance %s: material number %d of mesh %s has no name", name.c_str(),
                       submesh->mMaterial, quoted(mesh->mName).c_str());
            materials.insert(material);
        }
        for (const std::string& material : materials)
            if (!material.empty() && manager.getMaterial(material) == nullptr)
                remark(0, "mesh instance %s: there is no material %s", name.c_str(),
                       quoted(material).c_str());
    }

    const std::string& mImage;
    ReadBuffer mBuffer;
    std::string mText;
    int mRemarks = 0;
    std::vector<std::string> mPending; // remarks on the chunk being described
    bool mSawVertices = false;
};

} // namespace

Inspection inspect(const std::string& image) {
    return Inspector(image).run();
}

} // namespace zentrak::scene
