// The scenes of the show and of the effects that the tests run.
#pragma once

#include <string>

namespace zentrak::scene {

// Each returns a complete file image.

// A head, 0.92 from chin to crown, around the origin, facing +z. Every 28th vertex shows the lines of the
// face: those vertices are dense at eyes, nose, mouth, ears and jaw, and sparse elsewhere.
std::string makeFace();
// A Gothic church, y up, its nave along z around the origin, to be seen from (0, 16, -40) towards (0, 10, 0).
// Every object is a closed solid around its node's origin, so that an inflated copy outlines it. Texture
// coordinates u of 12 and above are glass.
std::string makeCathedral();
// A courtyard with corners, steps, columns and lamps for occlusion and glow, y up, within 30 units of the
// camera, which circles it in 24 seconds. Texture coordinates u of 12 and above are lamps. Objects named
// "ex_..." cast no shadow.
std::string makeCourtyard();
// A rough stone of about 1.6 around the origin, of 12,000 triangles; its texture goes round it once.
std::string makeStone();

} // namespace zentrak::scene
