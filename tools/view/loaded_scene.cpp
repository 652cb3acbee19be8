#include "view/loaded_scene.h"

#include "o3d_chunk.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zentrak::view {

namespace {

const mathbase::Vector4f PLAIN(0.74f, 0.74f, 0.76f, 1);

void grow(Vector3f& low, Vector3f& high, const Vector3f& point) {
    low = Vector3f(std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z));
    high = Vector3f(std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z));
}

bool isFinite(const Vector3f& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

Vector3f corner(const Vector3f& low, const Vector3f& high, int i) {
    return Vector3f(i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z);
}

// UTF-8 to the font's Latin-1, with question marks for what that lacks.
std::string toLatin(const std::string& text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            result += text[i];
        } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < text.size()) {
            result += char((byte & 3) << 6 | (text[++i] & 0x3F));
        } else if (byte >= 0xC0) {
            result += '?';
        }
    }
    return result;
}

} // namespace

LoadedScene::LoadedScene(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    if (file)
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (!file || bytes.size() > INT_MAX)
        throw std::runtime_error(file ? "it is too large" : strerror(errno));
    mManager.load(reinterpret_cast<const unsigned char*>(bytes.data()), int(bytes.size()));
    if (mManager.mScenes.empty())
        throw std::runtime_error("it contains no scene");
    for (o3d::Mesh* mesh : mManager.mMeshes)
        addMesh(*mesh);
    addRows(getScene(), -1);
    mCounts.nodes = mRows.size() - 1;
    mCounts.meshes = mManager.mMeshes.size();
    mCounts.materials = mManager.mMaterials.size();
    mLength = getScene().getAnimationLength();
    if (!std::isfinite(mLength))
        mLength = 0;
    getBox(0, 0, mLow, mHigh);
}

void LoadedScene::addRows(const o3d::SceneNode& node, int parent) {
    const int row = int(mRows.size());
    mRows.push_back({&node, parent});
    if (parent == 0 && node.getType() == o3d::CHUNK_CAMERA)
        mCameras.push_back(size_t(row));
    mCounts.lights += node.getType() == o3d::CHUNK_LIGHT;
    for (const o3d::SceneNode* child : node.mChildren)
        if (child)
            addRows(*child, row);
}

void LoadedScene::addMesh(o3d::Mesh& mesh) {
    mCounts.vertices += mesh.mVertices.size();
    try {
        mesh.checkIndices();
        for (const std::string& fault : mesh.findFaults())
            mFaults.push_back("mesh '" + toLatin(mesh.mName) + "': " + fault);
    } catch (const std::exception& exception) {
        mFaults.push_back(exception.what());
        return;
    }
    Geometry& geometry = mGeometry[mesh.mName];
    geometry = Geometry();
    geometry.points = mesh.mVertices;
    for (Vector3f& point : geometry.points)
        if (!isFinite(point))
            point = Vector3f(0, 0, 0);
    geometry.normals.resize(geometry.points.size(), Vector3f(0, 0, 0));
    for (const o3d::Submesh* submesh : mesh.mSubmeshes) {
        Part part{submesh->mMaterial, {}};
        for (const o3d::Triangle& triangle : submesh->mTriangles) {
            for (const int local : triangle.mIndex)
                part.indices.push_back(uint32_t(submesh->mIndices[size_t(local)].mValue));
            const uint32_t* const i = &part.indices[part.indices.size() - 3];
            const Vector3f& a = geometry.points[i[0]];
            Vector3f normal = (geometry.points[i[1]] - a).cross(geometry.points[i[2]] - a);
            if (!(normal.length() > 0) || !isFinite(normal))
                continue;
            normal.normalize();
            for (int c = 0; c < 3; ++c)
                geometry.normals[i[c]] += normal;
        }
        mCounts.triangles += submesh->mTriangles.size();
        geometry.parts.push_back(std::move(part));
    }
    for (Vector3f& normal : geometry.normals)
        if (normal.length() > 0)
            normal.normalize();
    if (geometry.points.empty())
        return;
    geometry.low = geometry.high = geometry.points[0];
    for (const Vector3f& point : geometry.points)
        grow(geometry.low, geometry.high, point);
}

Matrix4x4Col LoadedScene::getWorld(size_t row, float time, bool* flip) const {
    std::vector<const o3d::SceneNode*> path;
    for (int i = int(row); mRows[size_t(i)].parent >= 0; i = mRows[size_t(i)].parent)
        path.push_back(mRows[size_t(i)].node);
    Matrix4x4Col world;
    bool mirrored = false;
    for (size_t i = path.size(); i-- > 0;) {
        Matrix4x4Col local;
        bool flipped = false;
        path[i]->calculateMatrix(time, local, flipped);
        world.multiplyFromRight(local);
        mirrored = mirrored != flipped;
    }
    if (flip)
        *flip = mirrored;
    return world;
}

void LoadedScene::setColor(const o3d::MeshInstance& instance, const o3d::Mesh& mesh, int number) const {
    const std::string& own = instance.getMaterial(number);
    const o3d::Material* const material = mManager.getMaterial(own.empty() ? mesh.getMaterial(number) : own);
    mathbase::Vector4f color = PLAIN;
    if (material)
        for (const o3d::Material::Attribute* attribute : material->mAttributes)
            if (attribute->mName == "diffuse")
                color = attribute->mColor;
    // Never too dark to see its shape.
    const auto lifted = [](float channel) { return 0.1f + 0.9f * std::clamp(channel, 0.0f, 1.0f); };
    glColor4f(lifted(color.x), lifted(color.y), lifted(color.z), 1);
}

void LoadedScene::drawNormals(const Geometry& geometry, float reach) const {
    glBegin(GL_LINES);
    for (size_t i = 0; i < geometry.points.size(); ++i) {
        const Vector3f& from = geometry.points[i];
        const Vector3f to = from + geometry.normals[i] * reach;
        glVertex3f(from.x, from.y, from.z);
        glVertex3f(to.x, to.y, to.z);
    }
    glEnd();
}

void LoadedScene::draw(Drawing drawing, float time, float reach) const {
    glEnableClientState(GL_VERTEX_ARRAY);
    for (size_t row = 0; row < mRows.size(); ++row) {
        const auto* const instance = dynamic_cast<const o3d::MeshInstance*>(mRows[row].node);
        const o3d::Mesh* const mesh = instance ? mManager.getMesh(instance->mMeshName) : nullptr;
        const auto found = mesh ? mGeometry.find(mesh->mName) : mGeometry.end();
        if (found == mGeometry.end())
            continue;
        const Geometry& geometry = found->second;
        if (geometry.points.empty())
            continue;
        bool flip = false;
        const Matrix4x4Col world = getWorld(row, time, &flip);
        glPushMatrix();
        glMultMatrixf(world.mData);
        glVertexPointer(3, GL_FLOAT, sizeof(Vector3f), geometry.points.data());
        if (drawing == NORMALS) {
            const Vector3f across(world.mData[0], world.mData[1], world.mData[2]);
            drawNormals(geometry, reach / std::max(across.length(), 1e-6f));
        } else {
            glFrontFace(flip ? GL_CW : GL_CCW);
            if (drawing == FILLED) {
                glEnableClientState(GL_NORMAL_ARRAY);
                glNormalPointer(GL_FLOAT, sizeof(Vector3f), geometry.normals.data());
            }
            for (const Part& part : geometry.parts) {
                if (drawing == FILLED)
                    setColor(*instance, *mesh, part.material);
                glDrawElements(GL_TRIANGLES, GLsizei(part.indices.size()), GL_UNSIGNED_INT,
                               part.indices.data());
            }
            // A cloud of points.
            if (geometry.parts.empty() && drawing == FILLED) {
                glDisable(GL_LIGHTING);
                glColor4f(0.9f, 0.8f, 0.5f, 1);
                glDrawArrays(GL_POINTS, 0, GLsizei(geometry.points.size()));
                glEnable(GL_LIGHTING);
            }
            glDisableClientState(GL_NORMAL_ARRAY);
        }
        glPopMatrix();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glFrontFace(GL_CCW);
}

bool LoadedScene::getBox(size_t row, float time, Vector3f& low, Vector3f& high) const {
    bool any = false;
    for (size_t i = row; i < mRows.size(); ++i) {
        int up = int(i);
        while (up > int(row))
            up = mRows[size_t(up)].parent;
        if (up != int(row))
            break; // the rows below a node follow it directly
        const auto* const instance = dynamic_cast<const o3d::MeshInstance*>(mRows[i].node);
        const auto found = instance ? mGeometry.find(instance->mMeshName) : mGeometry.end();
        if (found == mGeometry.end() || found->second.points.empty())
            continue;
        const Matrix4x4Col world = getWorld(i, time);
        for (int c = 0; c < 8; ++c) {
            const Vector3f point = world * corner(found->second.low, found->second.high, c);
            if (!isFinite(point))
                continue;
            if (!any)
                low = high = point;
            any = true;
            grow(low, high, point);
        }
    }
    return any;
}

const char* kindOf(const o3d::SceneNode& node) {
    switch (node.getType()) {
    case o3d::CHUNK_SCENE:
        return "scene";
    case o3d::CHUNK_CAMERA:
        return "camera";
    case o3d::CHUNK_MESHINSTANCE:
        return "mesh";
    case o3d::CHUNK_LIGHT:
        return "light";
    case o3d::CHUNK_ARMATURE:
        return "armature";
    default:
        return "node";
    }
}

std::string labelOf(const o3d::SceneNode& node) {
    const std::string kind = kindOf(node);
    const std::string name = toLatin(node.mName);
    if (name.empty())
        return "(" + kind + ")";
    return kind == "node" ? name : name + "  (" + kind + ")";
}

} // namespace zentrak::view
