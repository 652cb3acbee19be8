// The scenes of the show and of the effects that the tests run.
#pragma once

#include <string>

namespace zentrak::scene {

// Each gives a whole file image.

// A head, chin to crown 0.92 high around the origin, facing +z. Whoever shows every 28th vertex sees the
// lines of the face: those vertices stand close where eyes, nose, mouth, ears and jaw are, and wide apart
// elsewhere.
std::string makeFace();
// A Gothic church, y up, its nave along z around the origin, to be seen from (0, 16, -40) towards (0, 10, 0).
// Every object is a closed solid around its own node's origin, so that an inflated copy outlines it. Texture
// coordinates u from 12 on are glass.
std::string makeCathedral();
// A courtyard with corners, steps, columns and lamps for occlusion and glow, y up, within 30 units of the
// camera, which goes round in 24 seconds. Texture coordinates u from 12 on are lamps. Names with "ex_" in
// front throw no shadow.
std::string makeCourtyard();
// A rough stone of about 1.6 around the origin, of 12,000 triangles; its texture goes round it once.
std::string makeStone();

} // namespace zentrak::scene
