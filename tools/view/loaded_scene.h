// A scene file as the viewer shows it.
#pragma once

#include "mb_matrix4x4col.h"
#include "o3d_manager.h"

#include <map>
#include <string>
#include <vector>

namespace zentrak::view {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

struct Counts {
    size_t nodes = 0, meshes = 0, triangles = 0, vertices = 0, materials = 0, lights = 0;
};

// Draws with plain vertex arrays and computes its own normals, so that it can show any file, even one that
// the show could not draw.
class LoadedScene {
public:
    // Throws Exception or std::runtime_error if the file can't be read or contains no scene.
    explicit LoadedScene(const std::string& path);

    struct Row {
        const o3d::SceneNode* node;
        int parent; // index; -1 for the scene itself
    };

    const o3d::Scene& getScene() const { return *mManager.mScenes.front(); }

    // The world transform of a node; `flip`: it is mirrored.
    Matrix4x4Col getWorld(size_t row, float time, bool* flip = nullptr) const;

    // The filled triangles of all mesh instances under the display's camera, or their edges, or a line for
    // each normal. `reach` is the length of a normal in the world.
    enum Drawing { FILLED, EDGES, NORMALS };
    void draw(Drawing drawing, float time, float reach) const;

    // The world bounding box of a node and all below it; false if it is empty.
    bool getBox(size_t row, float time, Vector3f& low, Vector3f& high) const;

    std::vector<Row> mRows;       // the tree, parents first; the first is the scene
    std::vector<size_t> mCameras; // rows, in the file's order: those in the scene itself, where effects look
    std::vector<std::string> mFaults; // what the show could not draw, a sentence each
    Counts mCounts;
    float mLength = 0;                      // of the animation, seconds
    Vector3f mLow{0, 0, 0}, mHigh{0, 0, 0}; // of all, at time 0

private:
    struct Part {
        int material;
        std::vector<uint32_t> indices;
    };
    struct Geometry {
        std::vector<Vector3f> points, normals;
        std::vector<Part> parts;
        Vector3f low, high;
    };

    void addRows(const o3d::SceneNode& node, int parent);
    void addMesh(o3d::Mesh& mesh);
    void setColor(const o3d::MeshInstance& instance, const o3d::Mesh& mesh, int material) const;
    void drawNormals(const Geometry& geometry, float reach) const;

    o3d::Manager mManager;
    std::map<std::string, Geometry> mGeometry; // by mesh name
};

// The kind of a node, "mesh", "camera"..., and its label in the tree: its name, or its kind if it has none.
const char* kindOf(const o3d::SceneNode& node);
std::string labelOf(const o3d::SceneNode& node);

} // namespace zentrak::view
