// Imports every file below a folder, compares the result with assimp's reading, and prints a table by format:
//   import_survey FOLDER [LIST.txt]     writes a line for each file to LIST.txt
// Exit status: 1 if an import differs, or crashes although assimp doesn't.

#include "compare.h"

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

using namespace zentrak::test;

namespace {

struct Row {
    int imported = 0, refused = 0, crashed = 0, wrong = 0;
    double worst = 0;
};

std::string kindOf(const std::filesystem::path& path, const Assimp::Importer& importer) {
    std::string kind = path.extension().string();
    std::transform(kind.begin(), kind.end(), kind.begin(), [](unsigned char c) { return char(tolower(c)); });
    return !kind.empty() && importer.IsExtensionSupported(kind) ? kind : "others";
}

void printRow(const std::string& name, const Row& row) {
    printf("| %s | %d | %d | %d | %.1e |\n", name.c_str(), row.imported, row.refused, row.crashed, row.worst);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: import_survey FOLDER [LIST.txt]\n");
        return 2;
    }
    FILE* const list = argc == 3 ? fopen(argv[2], "w") : nullptr;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[1]))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());

    const Assimp::Importer importer;
    std::map<std::string, Row> rows;
    Row all;
    for (const auto& file : files) {
        const Comparison result = compareImport(file.string());
        const bool crashed = result.refused && result.problem.find("the reader crashed") == 0;
        for (Row* const row : {&rows[kindOf(file, importer)], &all}) {
            ++(crashed ? row->crashed : result.refused ? row->refused : row->imported);
            row->wrong += !result.refused && !result.problem.empty();
            row->worst = std::max(row->worst, result.worst);
        }
        const char* const what = result.refused ? "refused" : result.problem.empty() ? "imported" : "WRONG";
        if (list)
            fprintf(list, "%s\t%s\t%zu vertices, %zu nodes at %zu times, off by %.1e, %zu losses\t%s\n",
                    file.c_str(), what, result.vertices, result.nodes, result.times, result.worst,
                    result.losses, result.problem.c_str());
        if (!result.refused && !result.problem.empty())
            fprintf(stderr, "%s: %s\n", file.c_str(), result.problem.c_str());
    }
    if (list)
        fclose(list);
    printf("| extension | imported | rejected | reader crashed | worst |\n|---|---|---|---|---|\n");
    for (const auto& [name, row] : rows)
        printRow(name, row);
    printRow("all", all);
    return all.wrong > 0 ? 1 : 0;
}
