// Converts any bytes that claim to be a model from the process that reads model files. What comes of it must
// be a scene file that loads whole.

#include "fuzz.h"
#include "import/convert.h"
#include "import/transfer.h"
#include "o3d_manager.h"
#include "ztk_system.h"

#include <stdexcept>

using namespace zentrak;

namespace {

void convert(const importer::Model& model, const importer::Options& options) {
    std::string image;
    try {
        image = importer::convert(model, options, "scene").image;
    } catch (const std::runtime_error&) {
        return;
    }
    o3d::Manager manager;
    manager.load(reinterpret_cast<const unsigned char*>(image.data()), int(image.size()));
    for (const o3d::Mesh* mesh : manager.mMeshes)
        mesh->checkIndices();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    importer::Model model;
    try {
        model = importer::fromBytes(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const std::runtime_error&) {
        return 0;
    }
    importer::Options options;
    convert(model, options);
    options.flat = true;
    options.fit = 2;
    options.up = "-z";
    convert(model, options);
    options.points = true;
    options.pointCount = 50;
    convert(model, options);
    return 0;
}
