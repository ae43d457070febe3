// SPDX-License-Identifier: MIT
#include "calibration/names.h"

#include "base/text_case.h"

#include <pelmora/calibration/failure.h>

#include <string_view>

namespace pelmora::calibration {
namespace {

bool isWithin(char32_t c, char32_t first, char32_t last) { return first <= c && c <= last; }

// What is wrong with a character; null if nothing is.
const char* flawOf(char32_t c) {
  if (isWithin(c, 0xDC80, 0xDCFF)) return "is not valid UTF-8";
  if (c < 0x20 || isWithin(c, 0x7F, 0x9F) || isWithin(c, 0x2028, 0x2029))
    return "has a control character";
  const bool turnsText = c == 0x61C || isWithin(c, 0x200E, 0x200F) || isWithin(c, 0x202A, 0x202E) ||
                         isWithin(c, 0x2066, 0x2069);
  return turnsText ? "has a character that changes the direction of writing" : nullptr;
}

}  // namespace

std::string cleanName(const std::string& what, const std::string& name) {
  const auto first = name.find_first_not_of(' ');
  if (first == std::string::npos) {
    throw BadData({"the name of the " + what + " is empty", "", "give a name"});
  }
  for (std::string_view rest = name; !rest.empty();) {
    if (const char* flaw = flawOf(takeCharacter(rest)))
      throw BadData({"the name of the " + what + " " + flaw, "", "leave it out"});
  }
  return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

}  // namespace pelmora::calibration
