// An imported scene in the hands of an effect.

#include "gl_fixture.h"
#include "import/convert.h"
#include "import/read_model.h"
#include "kasper.h"
#include "support.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace zentrak;

namespace {

// A box of two materials, ten units wide, around the origin.
constexpr const char* BOX = R"(mtllib none.mtl
v -5 -5 -5
v 5 -5 -5
v 5 5 -5
v -5 5 -5
v -5 -5 5
v 5 -5 5
v 5 5 5
v -5 5 5
vt 0 0
vt 1 0
vt 1 1
vt 0 1
usemtl front
f 5/1 6/2 7/3 8/4
f 2/1 1/2 4/3 3/4
usemtl sides
f 6/1 2/2 3/3 7/4
f 1/1 5/2 8/3 4/4
f 8/1 7/2 3/3 4/4
f 1/1 2/2 6/3 5/4
)";

class Imported : public test::GlTest {};

} // namespace

TEST_F(Imported, KasperDrawsItThroughTheCameraThatWasMade) {
    const test::TempDir folder;
    test::writeFile(folder.file("box.obj"), BOX);
    const importer::Conversion scene =
        importer::convert(importer::readModel(folder.file("box.obj")), importer::Options(), "box");
    test::writeFile(folder.file("box.o3d"), scene.image);
    window().archives().addArchive(folder.path());
    window().archives().addArchive(test::sourcePath("tests/data"));
    Kasper kasper;
    kasper.loadScene(&display(), "box.o3d");
    const test::Picture picture = frame([&] {
        glEnable(GL_DEPTH_TEST);
        kasper.render(0);
    });
    // All of the box is in sight: white in the middle, black all along the border.
    EXPECT_GT(picture.at(320, 200)[0], 200);
    for (int x = 0; x < picture.width; ++x)
        for (const int y : {0, picture.height - 1})
            EXPECT_LT(picture.at(x, y)[0], 50);
    int white = 0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            white += picture.at(x, y)[0] > 200;
    EXPECT_GT(white, picture.width * picture.height / 10);
}
