// SPDX-License-Identifier: MIT
#include "calibration/names.h"

#include "base/text_flaw.h"

#include <pelmora/calibration/failure.h>

namespace pelmora::calibration {
namespace {

const char* words(TextFlaw flaw) {
  switch (flaw) {
    case TextFlaw::malformed: return "is not valid UTF-8";
    case TextFlaw::control: return "has a control character";
    case TextFlaw::bidirectional: return "has a character that turns the reading direction";
    case TextFlaw::none: break;
  }
  return "is empty";
}

}  // namespace

std::string cleanName(const std::string& what, const std::string& name) {
  const auto first = name.find_first_not_of(' ');
  if (first == std::string::npos)
    throw BadData({"the name of the " + what + " is empty", "", "give a name"});
  if (const TextFlaw flaw = flawOf(name); flaw != TextFlaw::none)
    throw BadData({"the name of the " + what + " " + words(flaw), "", "give one without it"});
  return name.substr(first, name.find_last_not_of(' ') - first + 1);
}

}  // namespace pelmora::calibration
