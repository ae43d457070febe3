// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/output_file.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/trouble.h"
#include "files/replace_file.h"

#include <filesystem>
#include <system_error>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

Trouble cannotWrite(const std::string& path, const std::string& reason) {
  return {ExitCode::unexpected, "'" + path + "' cannot be written: " + reason,
          "check the folder's permissions and the disk's room; what was there is unchanged"};
}

}  // namespace

void requireOutputFile(const std::string& path, const std::string& database) {
  const auto refuse = [&](const std::string& why, const std::string& remedy) {
    throw Trouble(ExitCode::usage, "'" + path + "' " + why, remedy);
  };
  std::error_code code;
  const fs::file_status status = fs::status(path, code);
  if (fs::is_directory(status)) refuse("is a folder", "name a file in it");
  if (fs::exists(status) && !fs::is_regular_file(status))
    refuse("is not a regular file", "name a file, or - for standard output");
  if (fs::exists(status) && fs::equivalent(path, database, code))
    refuse("is the curve database", "name another file");
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty() && !fs::is_directory(folder, code))
    refuse("lies in a folder that is not there", "make the folder first");
}

void writeOutputFile(const std::string& path, const std::string& content) {
  try {
    replaceFile(path, content, requireNotInterrupted);
  } catch (const CannotReplaceFile& failure) {
    throw cannotWrite(path, failure.what());
  }
  noteFileWritten();
}

}  // namespace pelmora::cli
