// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/suggested_command.h"

#include "apps/pelmora/description/shell_completion.h"

#include <string_view>

namespace pelmora::cli {
namespace {

// What no shell reads as anything but itself.
bool isPlain(const std::string& word) {
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:,+=@%";
  return !word.empty() && word.find_first_not_of(plain) == std::string::npos;
}

}  // namespace

std::string suggestedCommand(const std::vector<std::string>& words) {
  std::string text = "pelmora";
  for (const std::string& word : words) text += " " + (isPlain(word) ? word : shellQuoted(word));
  return text;
}

void addSeriesWords(std::vector<std::string>& words, const std::string& meter, int calibration,
                    const std::string& series) {
  words.insert(words.end(), {"--meter", meter});
  if (calibration >= 0) words.insert(words.end(), {"--calibration", std::to_string(calibration)});
  words.insert(words.end(), {"--series", series});
}

}  // namespace pelmora::cli
