// Owns the contents of .o3d files, by name.
#pragma once

#include "o3d_armature.h"
#include "o3d_material.h"
#include "o3d_mesh.h"
#include "o3d_scenenode.h"

#include <map>
#include <string>
#include <vector>

namespace zentrak::o3d {

// References between the objects are by name, and are resolved when they are used. Pointers that are given
// out stay valid until clear().
class Manager {
public:
    Manager();
    ~Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    // Adds the contents of a file of `length` bytes, which need not outlive the call. Of two objects with one
    // name the later is found. A truncated file gives what is there. Throws Exception, with nothing added, if
    // the format or version differs, or the first chunk is not the main one.
    void load(const unsigned char* data, int length);
    // The children of the main chunk that is open.
    void loadChunkMain(chunklib::ReadBuffer& buffer);
    // The file image of everything held, in a block of new[] that the caller owns. An empty Manager gives a
    // header alone, which load() refuses.
    void write(unsigned char** data, int* length);
    // Destroys everything.
    void clear();

    // Appends the scene, which the Manager owns from then on. Null is ignored.
    void addScene(Scene* scene);

    // The object of exactly that name, or null. Of scenes the first.
    Scene* getScene(const std::string& name);
    const Scene* getScene(const std::string& name) const;
    Mesh* getMesh(const std::string& name);
    const Mesh* getMesh(const std::string& name) const;
    Material* getMaterial(const std::string& name);
    const Material* getMaterial(const std::string& name) const;
    Image* getImage(const std::string& name);
    const Image* getImage(const std::string& name) const;

    // The index in the list, or -1.
    int getMeshIndex(const std::string& name) const;
    int getMaterialIndex(const std::string& name) const;
    int getImageIndex(const std::string& name) const;

    // All owned.
    std::vector<Mesh*> mMeshes;
    std::vector<Material*> mMaterials;
    std::vector<Scene*> mScenes;
    std::vector<Image*> mImages;
    std::map<std::string, int> mImageMap;
    std::map<std::string, int> mMeshMap;
    std::map<std::string, int> mMaterialMap;
};

} // namespace zentrak::o3d
