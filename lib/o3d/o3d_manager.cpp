#include "o3d_manager.h"

#include "o3d_chunk.h"
#include "o3d_load.h"
#include "ztk_system.h"

#include <climits>
#include <cstring>
#include <memory>

namespace zentrak::o3d {

Manager::Manager() = default;

Manager::~Manager() {
    clear();
}

void Manager::load(const unsigned char* data, int length) {
    chunklib::ReadBuffer buffer(data, length);
    const int first = buffer.getVersionFirst();
    const int second = buffer.getVersionSecond();
    if (buffer.getFormat() != FORMAT || first != VERSION_FIRST || second != VERSION_SECOND)
        throw Exception("Manager-file is of wrong version (%d:%d of format %s)", first, second,
                        buffer.getFormat().c_str());
    const uint16_t id = buffer.openChunk();
    if (id != CHUNK_MAIN)
        throw Exception("There can only be a main-chunk as the top of the hiarchy! Found 0x%X", id);
    loadChunkMain(buffer);
    buffer.closeChunk();
}

// Ensures that the next push_back() can't fail, with geometric growth.
template <typename T>
static void makeRoom(std::vector<T*>& list) {
    if (list.size() == list.capacity())
        list.reserve(list.size() < 8 ? 8 : list.size() * 2);
}

template <typename T>
static void loadScene(chunklib::ReadBuffer& buffer, std::vector<T*>& list) {
    auto object = std::make_unique<T>();
    object->loadChunk(buffer);
    makeRoom(list);
    list.push_back(object.release());
}

// Loads one object and binds its name to it, even if an older object has that name.
template <typename T>
static void loadNamed(chunklib::ReadBuffer& buffer, std::vector<T*>& list,
                      std::map<std::string, int>& names) {
    auto object = std::make_unique<T>();
    object->loadChunk(buffer);
    makeRoom(list);
    names[object->mName] = int(list.size());
    list.push_back(object.release());
}

void Manager::loadChunkMain(chunklib::ReadBuffer& buffer) {
    while (const uint16_t id = buffer.openChunk()) {
        try {
            switch (id) {
            case CHUNK_MATERIAL:
                loadNamed(buffer, mMaterials, mMaterialMap);
                break;
            case CHUNK_MESH:
                loadNamed(buffer, mMeshes, mMeshMap);
                break;
            case CHUNK_IMAGE:
                loadNamed(buffer, mImages, mImageMap);
                break;
            case CHUNK_SCENE:
                loadScene(buffer, mScenes);
                break;
            default:
                ZTK_LOG("warning", "o3d", "Unknown chunk with ID=0x%X\n", id);
                break;
            }
        } catch (...) {
            // The object is dropped silently; what follows may still be readable.
        }
        buffer.closeChunk();
    }
}

void Manager::write(unsigned char** data, int* length) {
    *data = nullptr;
    *length = 0;

    chunklib::WriteBuffer buffer(FORMAT, VERSION_FIRST, VERSION_SECOND, chunklib::WriteBuffer::FLAG_TYPETAG);
    buffer.openChunk(CHUNK_MAIN);
    for (const Mesh* mesh : mMeshes)
        mesh->writeChunk(buffer);
    for (const Material* material : mMaterials)
        material->writeChunk(buffer);
    for (const Image* image : mImages)
        image->writeChunk(buffer);
    for (Scene* scene : mScenes)
        scene->writeChunk(buffer);
    buffer.closeChunk();

    if (buffer.mData.size() > INT_MAX)
        throw Exception("Manager::write, too much for one file (%zu bytes)", buffer.mData.size());
    *data = new unsigned char[buffer.mData.size()];
    memcpy(*data, buffer.mData.data(), buffer.mData.size());
    *length = int(buffer.mData.size());
}

template <typename T>
static void destroyAll(std::vector<T*>& list) {
    for (T* object : list)
        delete object;
    list.clear();
}

void Manager::clear() {
    destroyAll(mImages);
    destroyAll(mMeshes);
    destroyAll(mScenes);
    destroyAll(mMaterials);
    mImageMap.clear();
    mMeshMap.clear();
    mMaterialMap.clear();
}

void Manager::addScene(Scene* scene) {
    if (scene != nullptr)
        mScenes.push_back(scene);
}

const Scene* Manager::getScene(const std::string& name) const {
    for (const Scene* scene : mScenes)
        if (scene->mName == name)
            return scene;
    return nullptr;
}

Scene* Manager::getScene(const std::string& name) {
    return const_cast<Scene*>(static_cast<const Manager*>(this)->getScene(name));
}

// The index bound to a name; -1 if there is none or if it is past the end of the list.
template <typename T>
static int indexOf(const std::map<std::string, int>& names, const std::vector<T*>& list,
                   const std::string& name) {
    const auto found = names.find(name);
    if (found == names.end() || found->second < 0 || size_t(found->second) >= list.size())
        return -1;
    return found->second;
}

int Manager::getMeshIndex(const std::string& name) const {
    return indexOf(mMeshMap, mMeshes, name);
}

int Manager::getMaterialIndex(const std::string& name) const {
    return indexOf(mMaterialMap, mMaterials, name);
}

int Manager::getImageIndex(const std::string& name) const {
    return indexOf(mImageMap, mImages, name);
}

Mesh* Manager::getMesh(const std::string& name) {
    const int index = getMeshIndex(name);
    return index < 0 ? nullptr : mMeshes[index];
}

const Mesh* Manager::getMesh(const std::string& name) const {
    const int index = getMeshIndex(name);
    return index < 0 ? nullptr : mMeshes[index];
}

Material* Manager::getMaterial(const std::string& name) {
    const int index = getMaterialIndex(name);
    return index < 0 ? nullptr : mMaterials[index];
}

const Material* Manager::getMaterial(const std::string& name) const {
    const int index = getMaterialIndex(name);
    return index < 0 ? nullptr : mMaterials[index];
}

Image* Manager::getImage(const std::string& name) {
    const int index = getImageIndex(name);
    return index < 0 ? nullptr : mImages[index];
}

const Image* Manager::getImage(const std::string& name) const {
    const int index = getImageIndex(name);
    return index < 0 ? nullptr : mImages[index];
}

} // namespace zentrak::o3d
