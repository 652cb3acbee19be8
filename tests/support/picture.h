// PNG files, and comparing pictures with references.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zentrak::test {

// 8-bit RGBA, rows from the top, without padding.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba;

    Picture() = default;
    Picture(int w, int h) : width(w), height(h), rgba(size_t(w) * size_t(h) * 4) {}

    uint8_t* at(int x, int y) { return rgba.data() + (size_t(y) * size_t(width) + size_t(x)) * 4; }
    const uint8_t* at(int x, int y) const {
        return rgba.data() + (size_t(y) * size_t(width) + size_t(x)) * 4;
    }
};

bool readPng(const std::string& path, Picture& picture);        // any PNG, converted to 8-bit RGBA
bool writePng(const std::string& path, const Picture& picture); // creates the folders it needs

// How much two pictures of the same size differ, in their colour channels (alpha is ignored).
struct PictureDifference {
    double mean = 0;    // mean absolute difference of a channel, 0 to 255
    double changed = 0; // share of pixels with a channel that differs by more than 24, 0 to 1
};
PictureDifference comparePictures(const Picture& a, const Picture& b);

// Compares `drawn` with tests/pictures/NAME.png. Fails if they differ by more than either bound or in
// size, or if there is no reference, and leaves NAME.png, NAME.reference.png and NAME.difference.png in the
// build tree under pictures-failed/. With ZENTRAK_UPDATE_PICTURES=1 in the environment the reference is
// written instead.
::testing::AssertionResult matchesReference(const std::string& name, const Picture& drawn,
                                            double maxMean = 1.0, double maxChanged = 0.005);

} // namespace zentrak::test
