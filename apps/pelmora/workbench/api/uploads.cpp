// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/uploads.h"

#include "base/ascii_character.h"

#include <pelmora/calibration/failure.h>

#include <cstdlib>
#include <fstream>
#include <system_error>

namespace pelmora::cli::workbench {
namespace {

constexpr std::size_t mostUploads = 4;

std::filesystem::path newFolder() {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "pelmora-workbench-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw calibration::Unusable(
        {"no folder for files can be made in the system's folder for "
         "temporary files",
         pattern, "set TMPDIR to a folder that you can write to"});
  }
  return pattern;
}

// Some readers go by the end of the name. It is taken only where it is plain.
std::string plainExtension(const std::string& name) {
  const auto dot = name.rfind('.');
  if (dot == std::string::npos || name.size() - dot > 8) return ".dat";
  for (std::size_t i = dot + 1; i < name.size(); ++i) {
    const char c = name[i];
    if (!isLetter(c) && !isDigit(c)) return ".dat";
  }
  return name.substr(dot);
}

}  // namespace

Uploads::Uploads() : folder_(newFolder()) {}

Uploads::~Uploads() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

const Upload& Uploads::add(const std::string& name, const std::string& bytes) {
  if (uploads_.size() == mostUploads) {
    std::error_code ignored;
    std::filesystem::remove(uploads_.front().path, ignored);
    uploads_.pop_front();
  }
  const std::string id = std::to_string(++count_);
  const std::filesystem::path path = folder_ / ("file" + id + plainExtension(name));
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream << bytes;
  stream.close();
  if (!stream) {
    throw calibration::Unusable({"the file cannot be kept until it is imported", folder_.string(),
                                 "make room on the disk"});
  }
  uploads_.push_back({id, name, path});
  return uploads_.back();
}

const Upload& Uploads::get(const std::string& id) const {
  for (const Upload& upload : uploads_) {
    if (upload.id == id) return upload;
  }
  throw calibration::NotFound(
      {"the dropped file is no longer kept", "the workbench", "drop it once more"});
}

std::string Uploads::withNames(std::string text) const {
  for (const Upload& upload : uploads_) {
    const std::string path = upload.path.string();
    for (std::size_t at = 0; (at = text.find(path, at)) != std::string::npos;)
      text.replace(at, path.size(), upload.name);
  }
  return text;
}

}  // namespace pelmora::cli::workbench
