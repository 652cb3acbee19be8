// Meshes as buffers: the position of each Submesh, the contents of the buffers, and what is drawn.

#include "dis_shader.h"
#include "gl_fixture.h"
#include "gml_mesh.h"
#include "o3d_manager.h"
#include "support.h"
#include "ztk_system.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

using namespace zentrak;
using display::IBO;
using display::VertexP3N3T2A4A4;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

using Corners = std::array<int, 3>;

// A Submesh of local vertices for these positions.
o3d::Submesh& addSubmesh(o3d::Mesh& mesh, const std::vector<int>& positions,
                         const std::vector<Corners>& triangles) {
    auto* submesh = new o3d::Submesh;
    mesh.mSubmeshes.push_back(submesh);
    submesh->mParent = &mesh;
    for (const int position : positions) {
        o3d::Index index;
        index.mValue = position;
        submesh->mIndices.push_back(index);
    }
    for (const Corners& corners : triangles) {
        o3d::Triangle triangle;
        for (size_t i = 0; i < 3; ++i)
            triangle.mIndex[i] = corners[i];
        submesh->mTriangles.push_back(triangle);
    }
    return *submesh;
}

void addTexCoords(o3d::Submesh& submesh, const std::vector<Vector3f>& list) {
    submesh.mTexCoords.push_back(new o3d::StructList<Vector3f>);
    submesh.mTexCoords.back()->mList = list;
}

// A triangle strip in the plane z = 0 over this many vertices.
void makeStrip(o3d::Mesh& mesh, int vertices) {
    std::vector<int> positions;
    std::vector<Corners> triangles;
    for (int i = 0; i < vertices; ++i) {
        mesh.mVertices.emplace_back(float(i / 2), float(i % 2), 0.0f);
        positions.push_back(i);
        if (i >= 2)
            triangles.push_back({i - 2, i - 1, i});
    }
    addSubmesh(mesh, positions, triangles);
}

// Two triangles in two Submeshes: (0,0) (1,0) (0,1), and a copy two to the right.
void makePair(o3d::Mesh& mesh) {
    mesh.mName = "pair";
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0),
                      Vector3f(2, 0, 0), Vector3f(3, 0, 0), Vector3f(2, 1, 0)};
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    addSubmesh(mesh, {3, 4, 5}, {{0, 1, 2}});
}

class GimliTest : public test::GlTest {
protected:
    void SetUp() override { window(64, 64); }

    std::vector<VertexP3N3T2A4A4> vertices(gimli::Mesh& mesh) {
        std::vector<VertexP3N3T2A4A4> result(size_t(mesh.mVBO.getSize()));
        mesh.mVBO.bind();
        std::memcpy(result.data(), mesh.mVBO.lock(false, true), result.size() * sizeof(VertexP3N3T2A4A4));
        mesh.mVBO.unlock();
        mesh.mVBO.unbind();
        return result;
    }

    std::vector<unsigned> indices(gimli::Mesh& mesh) {
        std::vector<unsigned> result;
        const int size = mesh.mIBO.getEntitySize();
        mesh.mIBO.bind();
        const auto* bytes = static_cast<const unsigned char*>(mesh.mIBO.lock(false, true));
        for (int i = 0; i < mesh.mIBO.getSize(); ++i) {
            unsigned value = 0;
            std::memcpy(&value, bytes + i * size, size_t(size));
            result.push_back(value);
        }
        mesh.mIBO.unlock();
        mesh.mIBO.unbind();
        return result;
    }

    // Draws a frame with a view of x and y from -0.5 to 3.5.
    test::Picture draw(const std::function<void()>& drawing) {
        return frame([&] {
            Matrix4x4Col project;
            project.setProjectOrtho2D(-0.5f, 3.5f, -0.5f, 3.5f);
            display().setProject(project);
            display().setCamera(Matrix4x4Col());
            display().setTransform(Matrix4x4Col());
            glDisable(GL_CULL_FACE);
            display().setColor(1, 1, 1, 1);
            drawing();
            display().setVBO(nullptr);
            display().setIBO(nullptr);
        });
    }

    // Is the pixel under (x, y) of the view lit?
    static bool lit(const test::Picture& picture, float x, float y) {
        const size_t column = size_t((x + 0.5f) * 16), row = size_t((3.5f - y) * 16);
        return picture.rgba[(row * 64 + column) * 4] > 128;
    }
};

} // namespace

TEST_F(GimliTest, TheIndexFormatIsTheSmallestForTheNumberOfVertices) {
    const struct {
        int vertices;
        IBO::Format format;
    } cases[] = {{255, IBO::FORMAT_UINT8},
                 {256, IBO::FORMAT_UINT16},
                 {65535, IBO::FORMAT_UINT16},
                 {65536, IBO::FORMAT_UINT32}};
    for (const auto& c : cases) {
        o3d::Mesh source;
        makeStrip(source, c.vertices);
        gimli::Mesh mesh(&display());
        mesh.load(static_cast<const o3d::Mesh*>(&source), 1);
        EXPECT_EQ(mesh.mIBO.getFormatGL(), GLenum(c.format)) << c.vertices;
        EXPECT_EQ(mesh.mIBO.getSize(), 3 * (c.vertices - 2));
        EXPECT_EQ(indices(mesh).back(), unsigned(c.vertices - 1));
    }
}

TEST_F(GimliTest, TheSecondSubmeshsIndicesCountFromTheFirstOnesVertices) {
    o3d::Mesh source;
    makePair(source);
    gimli::Mesh mesh(&display());
    mesh.load(&source, 1);
    EXPECT_EQ(indices(mesh), (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
    ASSERT_EQ(mesh.mSubmeshes.size(), 2u);
    const gimli::Mesh::Submesh& second = mesh.mSubmeshes[1];
    EXPECT_EQ(second.mFirstIndex, 3);
    EXPECT_EQ(second.mIndexCount, 3);
    EXPECT_EQ(second.mFirstVertex, 3);
    EXPECT_EQ(second.mVertexCount, 3);
    EXPECT_EQ(second.mMode, 4);
    EXPECT_EQ(second.mBoxMin, Vector3f(0, 0, 0));
    EXPECT_EQ(second.mBoxMax, Vector3f(0, 0, 0));
}

TEST_F(GimliTest, AVertexHoldsPositionNormalCoordinatesTangentAndBinormal) {
    EXPECT_EQ(sizeof(VertexP3N3T2A4A4), 64u);
    o3d::Mesh source;
    source.mName = "corner";
    source.mVertices = {Vector3f(0, 0, 0), Vector3f(2, 0, 0), Vector3f(0, 3, 0)};
    source.mBoxMax = Vector3f(2, 3, 0);
    addTexCoords(addSubmesh(source, {2, 0, 1}, {{0, 1, 2}}),
                 {Vector3f(0, 1, 7), Vector3f(0, 0, 7), Vector3f(1, 0, 7)});
    gimli::Mesh mesh(&display());
    mesh.load(&source, 1);
    EXPECT_EQ(mesh.mName, "corner");
    EXPECT_EQ(mesh.mBoxMax, Vector3f(2, 3, 0));
    const std::vector<VertexP3N3T2A4A4> found = vertices(mesh);
    ASSERT_EQ(found.size(), 3u);
    const std::vector<o3d::TangentSpace>& spaces = source.mSubmeshes[0]->mTangentSpaces;
    ASSERT_EQ(spaces.size(), 3u); // made by load()
    const Vector3f positions[] = {Vector3f(0, 3, 0), Vector3f(0, 0, 0), Vector3f(2, 0, 0)};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(found[i].p, positions[i]);
        EXPECT_EQ(found[i].n, spaces[i].mNormal);
        EXPECT_EQ(found[i].n, Vector3f(0, 0, 1));
        EXPECT_EQ(Vector3f(found[i].a1.x, found[i].a1.y, found[i].a1.z), spaces[i].mTangent);
        EXPECT_EQ(Vector3f(found[i].a2.x, found[i].a2.y, found[i].a2.z), spaces[i].mBinormal);
        EXPECT_GT(spaces[i].mTangent.length(), 0.9f);
        EXPECT_EQ(found[i].a1.w, 0);
        EXPECT_EQ(found[i].a2.w, 0);
    }
    EXPECT_EQ(found[0].t1, mathbase::Vector2f(0, 1));
    EXPECT_EQ(found[2].t1, mathbase::Vector2f(1, 0));
}

TEST_F(GimliTest, ASubmeshWithoutTrianglesOrWithoutIndicesTakesNothing) {
    o3d::Mesh source;
    makePair(source);
    addSubmesh(source, {0, 1, 2}, {});
    addSubmesh(source, {0, 1, 2}, {{0, 1, 2}});
    addSubmesh(source, {}, {});
    gimli::Mesh mesh(&display());
    mesh.load(static_cast<const o3d::Mesh*>(&source), 1);
    ASSERT_EQ(mesh.mSubmeshes.size(), 5u);
    for (const size_t i : {size_t(2), size_t(4)}) {
        EXPECT_EQ(mesh.mSubmeshes[i].mIndexCount, 0);
        EXPECT_EQ(mesh.mSubmeshes[i].mVertexCount, 0);
        EXPECT_EQ(mesh.mSubmeshes[i].mFirstIndex, 0);
        EXPECT_EQ(mesh.mSubmeshes[i].mMode, 0);
    }
    EXPECT_EQ(mesh.mSubmeshes[3].mFirstIndex, 6); // the sums are unchanged
    EXPECT_EQ(mesh.mSubmeshes[3].mFirstVertex, 6);
    const test::Picture nothing = draw([] {});
    const test::Picture drawn = draw([&] {
        mesh.drawSubmesh(2);
        mesh.drawSubmesh(4, GL_LINES);
        mesh.drawSubmesh(-1);
        mesh.drawSubmesh(5);
    });
    EXPECT_EQ(test::comparePictures(drawn, nothing).mean, 0);
}

TEST_F(GimliTest, ASubmeshWithTrianglesButNoIndicesTakesNothing) {
    o3d::Mesh source;
    makePair(source);
    addSubmesh(source, {}, {{0, 1, 2}});
    gimli::Mesh mesh(&display());
    mesh.load(static_cast<const o3d::Mesh*>(&source), 1);
    ASSERT_EQ(mesh.mSubmeshes.size(), 3u);
    const auto& nothingToDraw = mesh.mSubmeshes[2];
    for (const int value : {nothingToDraw.mIndexCount, nothingToDraw.mFirstIndex, nothingToDraw.mFirstVertex,
                            nothingToDraw.mVertexCount, int(nothingToDraw.mMode)})
        EXPECT_EQ(value, 0);
    EXPECT_EQ(mesh.mIBO.getSize(), 6);
    const test::Picture nothing = draw([] {});
    EXPECT_EQ(test::comparePictures(draw([&] { mesh.drawSubmesh(2); }), nothing).mean, 0);
}

TEST_F(GimliTest, EachSubmeshIsDrawnByItself) {
    o3d::Mesh source;
    makePair(source);
    gimli::Mesh mesh(&display());
    mesh.load(&source, 1);
    const test::Picture first = draw([&] { mesh.drawSubmesh(0); });
    EXPECT_TRUE(lit(first, 0.25f, 0.25f));
    EXPECT_FALSE(lit(first, 2.25f, 0.25f));
    const test::Picture second = draw([&] { mesh.drawSubmesh(1); });
    EXPECT_FALSE(lit(second, 0.25f, 0.25f));
    EXPECT_TRUE(lit(second, 2.25f, 0.25f));
    const test::Picture both = draw([&] { mesh.superDraw(); });
    EXPECT_TRUE(lit(both, 0.25f, 0.25f));
    EXPECT_TRUE(lit(both, 2.25f, 0.25f));
}

TEST_F(GimliTest, AnotherModeDrawsTheSameRange) {
    o3d::Mesh source;
    makePair(source);
    gimli::Mesh mesh(&display());
    mesh.load(&source, 1);
    const test::Picture lines = draw([&] { mesh.drawSubmesh(1, GL_LINES); });
    EXPECT_FALSE(lit(lines, 2.25f, 0.25f)); // the face is not filled
    EXPECT_FALSE(lit(lines, 0.25f, 0.02f));
    int pixels = 0;
    for (size_t i = 0; i < lines.rgba.size(); i += 4)
        pixels += lines.rgba[i] > 128;
    EXPECT_GE(pixels, 14); // one side of sixteen pixels; the third vertex makes no line
    EXPECT_LE(pixels, 17);
}

TEST_F(GimliTest, AMeshWithoutNormalsIsAWarningInTheConstForm) {
    o3d::Mesh source;
    makePair(source);
    gimli::Mesh mesh(&display());
    test::CaptureStdout capture;
    mesh.load(static_cast<const o3d::Mesh*>(&source), 1);
    const std::string log = capture.text();
    const size_t at = log.find("Mesh 'pair' has no normals");
    ASSERT_NE(at, std::string::npos) << log;
    EXPECT_NE(log.find("[warning]"), std::string::npos);
    EXPECT_NE(log.find("Mesh 'pair' has no normals", at + 1), std::string::npos); // one for each Submesh
}

TEST_F(GimliTest, AnEmptyMeshDrawsNothing) {
    o3d::Mesh source;
    gimli::Mesh mesh(&display());
    mesh.load(&source, 1);
    EXPECT_EQ(mesh.mVBO.getSize(), 0);
    const test::Picture nothing = draw([] {});
    EXPECT_EQ(test::comparePictures(draw([&] { mesh.superDraw(); }), nothing).mean, 0);
}

TEST_F(GimliTest, LoadingAgainReplacesTheMesh) {
    o3d::Mesh pair, strip;
    makePair(pair);
    makeStrip(strip, 4);
    gimli::Mesh mesh(&display());
    mesh.load(&pair, 1);
    mesh.load(static_cast<const o3d::Mesh*>(&strip), 1);
    EXPECT_EQ(mesh.mSubmeshes.size(), 1u);
    EXPECT_EQ(indices(mesh), (std::vector<unsigned>{0, 1, 2, 1, 2, 3}));
    mesh.clear();
    EXPECT_TRUE(mesh.mSubmeshes.empty());
    EXPECT_EQ(mesh.mVBO.getSize(), 0);
    EXPECT_EQ(mesh.mIBO.getSize(), 0);
}

TEST_F(GimliTest, WithoutADisplayItAsserts) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    o3d::Mesh source;
    gimli::Mesh mesh(nullptr);
    EXPECT_DEATH(mesh.load(static_cast<const o3d::Mesh*>(&source), 1), "mDisplay!=0");
}

TEST_F(GimliTest, IndicesOutOfRangeNeverReachTheCard) {
    for (const int bad : {-1, 6, 1 << 30}) {
        o3d::Mesh source;
        makePair(source);
        source.mSubmeshes[0]->mIndices[1].mValue = bad;
        gimli::Mesh mesh(&display());
        EXPECT_THROW(mesh.load(static_cast<const o3d::Mesh*>(&source), 1), Exception);
        o3d::Mesh other;
        makePair(other);
        other.mSubmeshes[1]->mTriangles[0].mIndex[2] = bad;
        EXPECT_THROW(mesh.load(static_cast<const o3d::Mesh*>(&other), 1), Exception);
        EXPECT_TRUE(mesh.mSubmeshes.empty());
    }
}

TEST_F(GimliTest, TheHeadOfTheShowIsUploaded) {
    am::File file = window().archives().readFile("face/face.o3d");
    o3d::Manager manager;
    ASSERT_FALSE(file.isNull());
    manager.load(file->data, int(file->length));
    ASSERT_FALSE(manager.mMeshes.empty());
    size_t expected = 0;
    for (o3d::Mesh* source : manager.mMeshes) {
        gimli::Mesh mesh(&display());
        mesh.load(source, 1);
        expected = 0;
        for (const o3d::Submesh* part : source->mSubmeshes)
            expected += part->mIndices.size();
        EXPECT_EQ(size_t(mesh.mVBO.getSize()), expected);
    }
}
