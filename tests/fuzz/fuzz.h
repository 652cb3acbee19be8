// Shared by the fuzz targets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zentrak::fuzz {

// Ends the program as a finding unless `holds`.
void check(bool holds);

// An empty folder in memory, which is the current one as long as the object lives. The folder itself is
// shared by all inputs.
class InFolder {
public:
    InFolder();
    ~InFolder();
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;

private:
    int mBefore; // a descriptor of the folder to go back to
};

// Whole files of the current folder.
void write(const std::string& name, const void* data, size_t size);
std::string read(const std::string& name);

} // namespace zentrak::fuzz
