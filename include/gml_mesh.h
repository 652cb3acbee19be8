// A mesh of a scene on the graphics card.
#pragma once

#include "dis_display.h"
#include "dis_ibo.h"
#include "dis_vbo.h"
#include "mb_vector3.h"
#include "o3d_mesh.h"

#include <string>
#include <vector>

namespace zentrak::gimli {

// One buffer of vertices (display::VertexP3N3T2A4A4) and one of indices for all Submeshes, one after the
// other. The o3d::Mesh is not needed after loading. The buffers are lost with their context: load again after
// the window was reopened.
class Mesh {
public:
    // The part of the buffers that one Submesh uses. One without triangles or without indices is empty.
    struct Submesh {
        mathbase::Vector3f mBoxMin; // loading leaves the box at zero
        mathbase::Vector3f mBoxMax;
        int mFirstIndex = 0;
        int mIndexCount = 0;
        int mFirstVertex = 0;
        int mVertexCount = 0;
        int mMode = 0; // GL_TRIANGLES, or 0 if empty
    };

    std::vector<Submesh> mSubmeshes; // one for each of the o3d::Mesh
    display::VBO mVBO;
    display::IBO mIBO;
    std::string mName;
    mathbase::Vector3f mBoxMin; // of the o3d::Mesh
    mathbase::Vector3f mBoxMax;
    display::DisplayGL* mDisplay; // not owned

    explicit Mesh(display::DisplayGL* display);

    // Makes the buffers, replacing older ones. The first form makes missing normals: see
    // o3d::Mesh::addNormals for what that throws and asserts. With the second, normals that are missing are a
    // warning and undefined. The number is unused. Needs the window to be open; asserts "mDisplay!=0" and
    // "uv!=0". Throws what o3d::Mesh::checkIndices throws, and an Exception with the mesh's name where the
    // buffers could not be made; the Mesh is then empty.
    void load(o3d::Mesh* mesh, int);
    void load(const o3d::Mesh* mesh, int);

    // Does nothing for an invalid index or an empty Submesh. The buffers remain the display's current
    // ones. The second form uses `mode` instead of the Submesh's own.
    void drawSubmesh(int index);
    void drawSubmesh(int index, unsigned int mode);
    void superDraw(); // all of them, in order

    void clear(); // frees the buffers and forgets the Submeshes

private:
    void layOut(const o3d::Mesh& mesh);
    void makeBuffers();
    void fillIndices(const o3d::Mesh& mesh);
    void fillVertices(const o3d::Mesh& mesh);

    int mVertices = 0; // of all Submeshes
    int mIndices = 0;
};

} // namespace zentrak::gimli
