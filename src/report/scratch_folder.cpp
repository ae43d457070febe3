// SPDX-License-Identifier: MIT
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace pelmora::report {

ScratchFolder::ScratchFolder() {
  const char* const stated = std::getenv("TMPDIR");
  const std::string folder = stated == nullptr || *stated == '\0' ? "/tmp" : stated;
  path_ = folder + "/pelmora-XXXXXX";
  if (mkdtemp(path_.data()) != nullptr) return;
  throw calibration::Unusable(
      {"temporary files cannot be written in the folder '" + folder + "': " + std::strerror(errno),
       folder, "set TMPDIR to a folder that can be written"});
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
    throw calibration::Unusable({"a temporary file cannot be written", file(name),
                                 "check the room in the folder of TMPDIR"});
  return file(name);
}

std::string ScratchFolder::read(const std::string& name) const {
  std::ifstream stream(file(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace pelmora::report
