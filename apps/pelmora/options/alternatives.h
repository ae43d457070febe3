// The words of a choice, as the help writes them.
// SPDX-License-Identifier: MIT
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace pelmora::cli {

// "all|raw|curve" as its words.
[[nodiscard]] inline std::vector<std::string> alternatives(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, '|');) words.push_back(word);
  return words;
}

}  // namespace pelmora::cli
