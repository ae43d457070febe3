// SPDX-License-Identifier: MIT
#include "adapters/ado/ado_connection.h"
#include "base/file_text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

namespace pelmora {
namespace {

bool hasAccessFormat(const std::filesystem::path& path) {
  constexpr std::size_t nameAt = 4;
  constexpr std::string_view jet = "Standard Jet DB";
  constexpr std::string_view ace = "Standard ACE DB";
  std::array<char, nameAt + jet.size()> start{};
  std::ifstream file(path, std::ios::binary);
  file.read(start.data(), start.size());
  const std::string_view name = std::string_view(start.data(), start.size()).substr(nameAt);
  return file.gcount() == static_cast<std::streamsize>(start.size()) &&
         (name == jet || name == ace);
}

std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

}  // namespace

bool isAccessLocation(const std::string& location) {
  const std::filesystem::path path = filePath(location);
  if (fileExists(path)) return hasAccessFormat(path);
  const std::string extension = lower(utf8Text(path.extension()));
  constexpr std::array<std::string_view, 5> ours{"", ".mdb", ".mde", ".accdb", ".accde"};
  return std::ranges::find(ours, extension) != ours.end();
}

}  // namespace pelmora
