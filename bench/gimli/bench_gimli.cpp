// The head of the show drawn from buffers and by one call per vertex, and the time to build the buffers:
//     tests/with_display build/bench/bench/gimli/bench_gimli [ROUNDS]
// from the root of the source tree. Median milliseconds of processor time, of all threads and of the calling
// one, up to the finished picture. GL_RASTERIZER_DISCARD is on, since filling pixels costs the same both
// ways.
#include "../measure.h"
#include "am_archivemanager.h"
#include "dis_display.h"
#include "gml_mesh.h"
#include "mb_matrix4x4col.h"
#include "o3d_manager.h"

#include <cstdio>

using namespace zentrak;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

// Draws what the buffers hold, one call per vertex.
void drawPlainly(const o3d::Mesh& mesh) {
    for (const o3d::Submesh* submesh : mesh.mSubmeshes) {
        glBegin(GL_TRIANGLES);
        for (const o3d::Triangle& triangle : submesh->mTriangles)
            for (const int corner : triangle.mIndex) {
                const auto local = size_t(corner);
                const o3d::TangentSpace& space = submesh->mTangentSpaces[local];
                const Vector3f& place = mesh.mVertices[size_t(submesh->mIndices[local].mValue)];
                glNormal3f(space.mNormal.x, space.mNormal.y, space.mNormal.z);
                if (!submesh->mTexCoords.empty()) {
                    const Vector3f& uv = (*submesh->mTexCoords[0])[local];
                    glTexCoord2f(uv.x, uv.y);
                }
                glVertex3f(place.x, place.y, place.z);
            }
        glEnd();
    }
}

} // namespace

int main(int count, char** arguments) {
    const int rounds = bench::roundsOf(count, arguments, 31);
    FILE* const results = bench::separateResults();
    am::ArchiveManager archives;
    archives.addArchive("data");
    display::DisplayGL display(display::WindowMode("bench", 64, 40, false));
    display.setArchive(&archives);
    display.open();

    const am::File file = archives.readFile("face/face.o3d");
    o3d::Manager manager;
    manager.load(file->data, int(file->length));
    o3d::Mesh& head = *manager.mMeshes.front();
    gimli::Mesh mesh(&display);
    mesh.load(&head, 1);

    Matrix4x4Col camera;
    camera.setCamera(Vector3f(0, 0, 3), Vector3f(0, 0, 0), 0);
    display.setCamera(camera);
    bench::Times load, buffers, plain;
    const auto finished = [](bench::Times& times, const auto& work) {
        glFinish();
        times.add([&] {
            work();
            glFinish();
        });
    };
    for (int i = 0; i < rounds; ++i)
        finished(load, [&] { mesh.load(&head, 1); });
    glEnable(GL_RASTERIZER_DISCARD);
    for (int i = 0; i < rounds; ++i) {
        finished(buffers, [&] { mesh.superDraw(); });
        display.setVBO(nullptr);
        display.setIBO(nullptr);
        finished(plain, [&] { drawPlainly(head); });
    }
    glDisable(GL_RASTERIZER_DISCARD);
    std::fprintf(results,
                 "%s, a head of %zu vertices, medians of %d rounds, milliseconds of processor time\n",
                 glGetString(GL_RENDERER), head.mVertices.size(), rounds);
    std::fprintf(results, "%-24s %8.2f\n", "making the buffers", bench::median(load.processor));
    const auto print = [&](const char* name, const std::vector<double>& calls,
                           const std::vector<double>& drawn) {
        const double a = bench::median(calls), b = bench::median(drawn);
        std::fprintf(results, "%-24s %8.2f by calls %8.2f by buffers %6.1fx\n", name, a, b, a / b);
    };
    print("drawing, all threads", plain.processor, buffers.processor);
    print("drawing, calling thread", plain.thread, buffers.thread);
    return 0;
}
