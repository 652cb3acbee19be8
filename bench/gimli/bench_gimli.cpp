// The head of the show drawn from buffers and by one call per vertex, and the time to build the buffers:
//     tests/with_display build/bench/bench/gimli/bench_gimli [ROUNDS]
// from the root of the source tree. Median milliseconds of processor time, of all threads up to the finished
// picture and of the drawing thread until it has submitted everything. GL_RASTERIZER_DISCARD is on, since
// filling pixels costs the same both ways.
#include "am_archivemanager.h"
#include "dis_display.h"
#include "gml_mesh.h"
#include "mb_matrix4x4col.h"
#include "o3d_manager.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <vector>

using namespace zentrak;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

double now(clockid_t clock) {
    timespec t;
    clock_gettime(clock, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

double median(std::vector<double>& values) {
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}

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

struct Cost {
    std::vector<double> whole, thread;

    void add(const std::function<void()>& work) {
        glFinish();
        const double all = now(CLOCK_PROCESS_CPUTIME_ID), own = now(CLOCK_THREAD_CPUTIME_ID);
        work();
        thread.push_back(now(CLOCK_THREAD_CPUTIME_ID) - own);
        glFinish();
        whole.push_back(now(CLOCK_PROCESS_CPUTIME_ID) - all);
    }
};

} // namespace

int main(int count, char** arguments) {
    const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 31;
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
    Cost load, buffers, plain;
    for (int i = 0; i < rounds; ++i)
        load.add([&] { mesh.load(&head, 1); });
    glEnable(GL_RASTERIZER_DISCARD);
    for (int i = 0; i < rounds; ++i) {
        buffers.add([&] { mesh.superDraw(); });
        display.setVBO(nullptr);
        display.setIBO(nullptr);
        plain.add([&] { drawPlainly(head); });
    }
    glDisable(GL_RASTERIZER_DISCARD);
    std::printf("%s, a head of %zu vertices, median of %d rounds, milliseconds\n", glGetString(GL_RENDERER),
                head.mVertices.size(), rounds);
    std::printf("making the buffers    %8.2f\n", median(load.whole));
    const double whole[2] = {median(plain.whole), median(buffers.whole)};
    const double thread[2] = {median(plain.thread), median(buffers.thread)};
    std::printf("drawing, finished     %8.2f by calls %8.2f by buffers %6.1fx\n", whole[0], whole[1],
                whole[0] / whole[1]);
    std::printf("drawing, handed over  %8.2f by calls %8.2f by buffers %6.1fx\n", thread[0], thread[1],
                thread[0] / thread[1]);
    return 0;
}
