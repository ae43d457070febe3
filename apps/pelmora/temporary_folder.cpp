// SPDX-License-Identifier: MIT
#include "apps/pelmora/temporary_folder.h"

#include "apps/pelmora/trouble.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace pelmora::cli {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::error_code code;
  std::string pattern = (fs::temp_directory_path(code) / "pelmora-XXXXXX").string();
  if (code || mkdtemp(pattern.data()) == nullptr) {
    throw Trouble(ExitCode::unexpected, "no temporary folder can be made", "check TMPDIR");
  }
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& text) const {
  const std::string file = (fs::path(path_) / name).string();
  std::ofstream stream(file, std::ios::binary);
  stream << text << std::flush;
  if (stream) return file;
  throw Trouble(ExitCode::unexpected, "file '" + file + "' cannot be written",
                "check TMPDIR and the room on that disk");
}

void TemporaryFolder::remove(const std::string& name) const {
  std::error_code ignored;
  fs::remove(fs::path(path_) / name, ignored);
}

}  // namespace pelmora::cli
