// SPDX-License-Identifier: MIT
#include "sheets/separator_choice.h"

#include "sheets/field_number.h"
#include "sheets/record_source.h"

#include <pelmora/sheet.h>

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::sheets {
namespace {

constexpr std::string_view candidates = ",;\t";
constexpr std::size_t sampledRecords = 1000;

std::string nameOf(char separator) {
  if (separator == ',') return "comma";
  return separator == ';' ? "semicolon" : "tab";
}

struct Score {
  char separator = ',';
  std::ptrdiff_t numbers = 0;  // fields that are numbers, less what speaks against the separator
  std::size_t broken = 0;      // fields with another separator in them
  std::size_t fields = 0;      // of records that have more than one
};

// Nothing if the text cannot be read with this separator.
std::optional<Score> scoreOf(std::string_view text, char separator) {
  // A field such as "5;3" of "12,5;3,4" says that the text is cut in the wrong places.
  constexpr std::ptrdiff_t costOfBroken = 2;
  std::string others(candidates);
  std::erase(others, separator);
  Score score{separator};
  RecordSource records(text, separator);
  Record record;
  try {
    for (std::size_t i = 0; i < sampledRecords && records.next(record); ++i) {
      if (record.fields.size() < 2) continue;
      score.fields += record.fields.size();
      for (const std::string& field : record.fields) {
        if (looksLikeNumber(field)) {
          ++score.numbers;
        } else if (field.find_first_of(others) != std::string::npos) {
          score.numbers -= costOfBroken;
          ++score.broken;
        }
      }
    }
  } catch (const SheetError&) {
    return std::nullopt;
  }
  return score;
}

bool isBetter(const Score& a, const Score& b) {
  if (a.numbers != b.numbers) return a.numbers > b.numbers;
  if (a.broken != b.broken) return a.broken < b.broken;
  return a.fields > b.fields;
}

}  // namespace

char chosenSeparator(std::string_view text) {
  std::string present;
  for (const char candidate : candidates) {
    if (text.find(candidate) != std::string_view::npos) present += candidate;
  }
  if (present.size() < 2) return present.empty() ? ',' : present.front();
  std::vector<Score> scores;
  for (const char candidate : present) {
    const auto score = scoreOf(text, candidate);
    if (score && score->fields > 0) scores.push_back(*score);
  }
  if (scores.empty()) return present.front();
  const Score* best = &scores.front();
  for (const Score& score : scores) {
    if (isBetter(score, *best)) best = &score;
  }
  for (const Score& score : scores) {
    if (&score == best || score.numbers < best->numbers || score.broken > best->broken ||
        score.numbers == 0)
      continue;
    throw SheetError("",
                     "the fields may be separated by a " + nameOf(best->separator) + " or by a " +
                         nameOf(score.separator),
                     "state the separator", SheetError::Doubt::separator);
  }
  return best->separator;
}

}  // namespace pelmora::sheets
