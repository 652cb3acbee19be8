#include "picture.h"
#include "support.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <png.h>

namespace zentrak::test {

bool readPng(const std::string& path, Picture& picture) {
    png_image image;
    memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return false;
    image.format = PNG_FORMAT_RGBA;
    picture = Picture(int(image.width), int(image.height));
    return png_image_finish_read(&image, nullptr, picture.rgba.data(), 0, nullptr) != 0;
}

bool writePng(const std::string& path, const Picture& picture) {
    std::filesystem::path parent = std::filesystem::path(path).parent_path();
    if (!parent.empty())
        std::filesystem::create_directories(parent);
    png_image image;
    memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(picture.width);
    image.height = png_uint_32(picture.height);
    image.format = PNG_FORMAT_RGBA;
    return png_image_write_to_file(&image, path.c_str(), 0, picture.rgba.data(), 0, nullptr) != 0;
}

PictureDifference comparePictures(const Picture& a, const Picture& b) {
    PictureDifference result;
    size_t pixels = a.rgba.size() / 4;
    double sum = 0;
    size_t changed = 0;
    for (size_t i = 0; i < pixels; ++i) {
        int worst = 0;
        for (size_t c = 0; c < 3; ++c) {
            int d = std::abs(int(a.rgba[i * 4 + c]) - int(b.rgba[i * 4 + c]));
            sum += d;
            worst = d > worst ? d : worst;
        }
        changed += worst > 24 ? 1 : 0;
    }
    if (pixels > 0) {
        result.mean = sum / double(pixels * 3);
        result.changed = double(changed) / double(pixels);
    }
    return result;
}

::testing::AssertionResult matchesReference(const std::string& name, const Picture& drawn, double maxMean,
                                            double maxChanged) {
    std::string reference = sourcePath("tests/pictures/" + name + ".png");
    const char* update = getenv("ZENTRAK_UPDATE_PICTURES");
    if (update != nullptr && strcmp(update, "1") == 0) {
        if (!writePng(reference, drawn))
            return ::testing::AssertionFailure() << "cannot write " << reference;
        return ::testing::AssertionSuccess() << "wrote " << reference;
    }

    std::string failed = binaryPath("pictures-failed/" + name);
    Picture wanted;
    if (!readPng(reference, wanted)) {
        writePng(failed + ".png", drawn);
        return ::testing::AssertionFailure()
               << "no reference " << reference << "; drawn: " << failed << ".png";
    }
    if (wanted.width != drawn.width || wanted.height != drawn.height) {
        writePng(failed + ".png", drawn);
        return ::testing::AssertionFailure() << name << ": drawn " << drawn.width << "x" << drawn.height
                                             << ", reference " << wanted.width << "x" << wanted.height;
    }
    PictureDifference difference = comparePictures(drawn, wanted);
    if (difference.mean <= maxMean && difference.changed <= maxChanged)
        return ::testing::AssertionSuccess();
    Picture shown(drawn.width, drawn.height);
    for (size_t i = 0; i < drawn.rgba.size(); ++i) {
        int d = std::abs(int(drawn.rgba[i]) - int(wanted.rgba[i])) * 4;
        shown.rgba[i] = i % 4 == 3 ? 255 : uint8_t(d > 255 ? 255 : d);
    }
    writePng(failed + ".png", drawn);
    writePng(failed + ".reference.png", wanted);
    writePng(failed + ".difference.png", shown);
    return ::testing::AssertionFailure() << name << ": mean difference " << difference.mean << " (at most "
                                         << maxMean << "), changed pixels " << difference.changed
                                         << " (at most " << maxChanged << "); see " << failed << "*.png";
}

} // namespace zentrak::test
