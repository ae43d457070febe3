// The bytes of a file, read and written without the component.
// SPDX-License-Identifier: MIT
#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace pelmora::test {

inline std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void putBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace pelmora::test
