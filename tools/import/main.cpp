// Makes a scene file of a model in any format that assimp reads.
//   zentrak-import [OPTION...] FILE [OUT.o3d]      --help lists the options
// Exit status: 0, 1 if the file is refused or OUT can't be written, 2 for wrong arguments.

#include "command/command.h"
#include "import/convert.h"
#include "import/read_model.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

using namespace zentrak;

namespace {

constexpr const char* USAGE =
    R"(usage: zentrak-import [OPTION...] FILE [OUT.o3d]
Makes a scene file of a model: glTF, FBX, Collada, OBJ and whatever else assimp reads. Without OUT.o3d it
takes the name of FILE, in the current folder.
  --scale=FACTOR      scales everything; 1 is one unit per metre
  --fit=RADIUS        instead scales and moves everything to lie within RADIUS of the origin
  --up=AXIS           the axis of FILE that points up: x, y, z, -x, -y, -z; default: what FILE says, or y
  --animation=NAME    which animation to take, by name or by number from 1; default: the first
  --flat              one mesh per node, in its pose at time 0, without animation
  --points            only the positions of all vertices
  --points=COUNT      only COUNT points, spread over the surfaces
  --no-camera         doesn't add a camera if FILE has none
  --dry-run           reports as usual, but writes nothing
  --seconds=COUNT     gives up reading FILE after this time; default: 60
)";

struct Call {
    importer::Options options;
    importer::Limits limits;
    bool dryRun = false;
    std::string file, out;
};

bool readPositive(const std::string& text, double& number) {
    char* end = nullptr;
    number = strtod(text.c_str(), &end);
    return !text.empty() && !*end && std::isfinite(number) && number > 0;
}

bool readOption(Call& call, const std::string& name, const std::string& value, bool hasValue) {
    if (name == "--scale" && hasValue)
        return readPositive(value, call.options.scale);
    if (name == "--fit" && hasValue)
        return readPositive(value, call.options.fit);
    if (name == "--up" && hasValue)
        return importer::axesWithUp(call.options.up = value), true;
    if (name == "--animation" && hasValue)
        return !(call.options.animation = value).empty();
    if (name == "--seconds")
        return command::readNumber(value.c_str(), 1, 86400, call.limits.seconds);
    if (name == "--points") {
        call.options.points = true;
        return !hasValue || command::readNumber(value.c_str(), 1, 100000000, call.options.pointCount);
    }
    if (hasValue)
        return false;
    if (name == "--flat")
        call.options.flat = true;
    else if (name == "--no-camera")
        call.options.camera = false;
    else if (name == "--dry-run")
        call.dryRun = true;
    else
        return false;
    return true;
}

bool readCall(int argc, char** argv, Call& call) {
    std::vector<std::string> files;
    const auto read = [&](const std::string& name, const std::string& value, bool hasValue) {
        return readOption(call, name, value, hasValue);
    };
    if (!command::readArguments(argc, argv, "zentrak-import", read, 2, files))
        return false;
    call.file = files[0];
    if (files.size() > 1)
        call.out = files[1];
    return true;
}

void report(const Call& call, const importer::Model& model, const importer::Conversion& result) {
    const importer::Counts& counts = result.counts;
    printf("%s: %s: ", call.file.c_str(), model.format.c_str());
    if (call.options.points)
        printf("%zu points\n", counts.points);
    else
        printf("%zu nodes, %zu meshes, %zu triangles, %zu materials, %zu cameras, %g seconds\n", counts.nodes,
               counts.meshes, counts.triangles, counts.materials, counts.cameras, counts.length);
    for (const std::string& loss : result.losses)
        printf("  lost: %s\n", loss.c_str());
    for (const std::string& remark : result.remarks)
        printf("  note: %s\n", remark.c_str());
}

int run(Call& call) {
    const std::filesystem::path file(call.file);
    if (call.out.empty())
        call.out = file.filename().replace_extension(".o3d").string();
    FILE* const probe = fopen(call.file.c_str(), "rb");
    if (!probe || std::filesystem::is_directory(file)) {
        fprintf(stderr, "%s: can't be read: %s\n", call.file.c_str(),
                probe ? "it is a folder" : strerror(errno));
        if (probe)
            fclose(probe);
        return 1;
    }
    fclose(probe);
    try {
        const importer::Model model = importer::readModel(call.file, call.limits);
        const importer::Conversion result = importer::convert(model, call.options, file.stem().string());
        report(call, model, result);
        if (call.dryRun)
            return 0;
        return command::writeFile(call.out, result.image.data(), result.image.size()) ? 0 : 1;
    } catch (const std::exception& exception) {
        fprintf(stderr, "%s: %s\n", call.file.c_str(), exception.what());
        return 1;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && strcmp(argv[1], "--help") == 0) {
        fputs(USAGE, stdout);
        return 0;
    }
    Call call;
    if (!readCall(argc, argv, call)) {
        fputs(USAGE, stderr);
        return 2;
    }
    return run(call);
}
