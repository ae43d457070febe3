// SPDX-License-Identifier: MIT
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace pelmora::report {

ScratchFolder::ScratchFolder() {
  std::error_code failed;
  path_ = (std::filesystem::temp_directory_path(failed) / "pelmora-XXXXXX").string();
  if (failed || mkdtemp(path_.data()) == nullptr)
    throw calibration::Unusable({"there is no room for temporary files", "", "check TMPDIR"});
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::write(const std::string& name, const std::string& content) const {
  std::ofstream stream(file(name), std::ios::binary);
  stream << content;
  stream.close();
  if (!stream)
    throw calibration::Unusable({"a temporary file cannot be written", file(name), "check TMPDIR"});
  return file(name);
}

std::string ScratchFolder::read(const std::string& name) const {
  std::ifstream stream(file(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace pelmora::report
