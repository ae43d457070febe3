// SPDX-License-Identifier: MIT
#include "apps/pelmora/trouble.h"

#include "base/text_flaw.h"
#include "base/utf8_text.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace pelmora::cli {

std::string oneLine(std::string_view text) {
  const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
  const bool isAllPlain = std::ranges::all_of(text, isPlain);  // by far the most
  std::string line(isAllPlain ? text : std::string_view());
  for (std::string_view rest = isAllPlain ? std::string_view() : text; !rest.empty();) {
    const std::string_view before = rest;
    const auto character = takeUtf8Character(rest);
    if (character == U'\r' || character == U'\n' || character == U'\t') {
      if (!line.empty() && line.back() != ' ') line += ' ';
    } else if (!character || flawOf(*character) != TextFlaw::none) {
      line += '?';
    } else {
      line += before.substr(0, before.size() - rest.size());
    }
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

void printNote(std::string_view text) {
  std::fprintf(stderr, "pelmora: note: %s\n", oneLine(text).c_str());
}

std::string errorLine(const Trouble& trouble) {
  std::string line = std::string(errorLabel) + " " + oneLine(trouble.what());
  if (trouble.remedy().empty()) return line;
  while (line.ends_with('.')) line.pop_back();
  return line + "; " + oneLine(trouble.remedy());
}

void requireMemory(const Error& error) {
  constexpr std::int32_t outOfMemory = 7;
  if (error.number() == outOfMemory) throw std::bad_alloc();
}

}  // namespace pelmora::cli
