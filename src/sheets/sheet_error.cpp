// SPDX-License-Identifier: MIT
#include <pelmora/sheet.h>

namespace pelmora::sheets {
namespace {

std::string sentence(const std::string& place, const std::string& problem,
                     const std::string& remedy) {
  std::string text = place.empty() ? problem : place + ": " + problem;
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text + "; " + remedy + ".";
}

}  // namespace

SheetError::SheetError(const std::string& place, const std::string& problem,
                       const std::string& remedy, Doubt doubt, std::int32_t number)
    : Error(number, "Pelmora", sentence(place, problem, remedy)),
      place_(place),
      problem_(problem),
      remedy_(remedy),
      doubt_(doubt) {}

SheetError::~SheetError() = default;

SheetError SheetError::inFile(const std::string& path, std::int32_t number) const {
  const std::string place = "file '" + path + "'" + (place_.empty() ? "" : ", " + place_);
  return {place, problem_, remedy_, doubt_, number};
}

}  // namespace pelmora::sheets
