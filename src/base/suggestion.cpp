// SPDX-License-Identifier: MIT
#include "base/suggestion.h"

#include <algorithm>

namespace pelmora {
namespace {

// Names worth listing in one line.
constexpr std::size_t listedNames = 8;
constexpr std::size_t suggestedNames = 3;
constexpr std::size_t charactersForAnError = 3;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string quoted(const std::string& name) { return "'" + name + "'"; }

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size() && i < listedNames; ++i) {
    list += (i == 0 ? "" : ", ") + quoted(names[i]);
  }
  if (names.size() > listedNames)
    list += " and " + std::to_string(names.size() - listedNames) + " more";
  return list;
}

}  // namespace

std::size_t typingDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      const bool isSwap = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                          lower(a[i - 2]) == lower(b[j - 1]);
      if (isSwap) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    beforeLast = last;
    last = row;
  }
  return last[b.size()];
}

std::vector<std::string> nearest(const std::string& name, const std::vector<std::string>& known) {
  std::vector<std::string> names;
  std::size_t fewest = std::max<std::size_t>(1, name.size() / charactersForAnError);
  for (const std::string& candidate : known) {
    const std::size_t errors = typingDistance(name, candidate);
    if (errors > fewest || errors >= candidate.size()) continue;
    if (errors < fewest) names.clear();
    fewest = errors;
    names.push_back(candidate);
  }
  if (names.size() > suggestedNames) names.clear();  // that many are a list, not a suggestion
  return names;
}

std::string suggestion(const std::string& name, const std::vector<std::string>& known) {
  const auto names = nearest(name, known);
  if (names.empty()) return "choose among " + listed(known);
  std::string text = "did you mean " + quoted(names.front());
  for (std::size_t i = 1; i < names.size(); ++i) text += " or " + quoted(names[i]);
  return text + "?";
}

}  // namespace pelmora
