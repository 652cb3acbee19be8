// Serialises a Model for the pipe between two processes of one program.
#pragma once

#include "import/model.h"

#include <string>

namespace zentrak::importer {

std::string toBytes(Model& model);
// Throws std::runtime_error if the bytes end too early or an index is out of range.
Model fromBytes(const std::string& bytes);

} // namespace zentrak::importer
