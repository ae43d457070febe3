// SPDX-License-Identifier: MIT
#include "base/file_text.h"

#include "base/run_time_error.h"

#include <fstream>
#include <iterator>

namespace pelmora {

std::string readWholeFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw makeError(RunTimeError::pathAccess);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) throw makeError(RunTimeError::pathAccess);
  return text;
}

}  // namespace pelmora
