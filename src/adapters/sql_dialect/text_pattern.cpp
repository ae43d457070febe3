// SPDX-License-Identifier: MIT
#include "adapters/sql_dialect/text_pattern.h"

#include "base/text_case.h"

namespace pelmora::sql {

namespace {

bool isInSet(char32_t character, std::string_view set) {
  const bool negated = !set.empty() && set.front() == '!';
  if (negated) set.remove_prefix(1);
  while (!set.empty()) {
    const char32_t first = smallLetter(takeCharacter(set));
    char32_t last = first;
    if (set.size() >= 2 && set.front() == '-') {
      set.remove_prefix(1);
      last = smallLetter(takeCharacter(set));
    }
    if (character >= first && character <= last) return !negated;
  }
  return negated;
}

// Takes one element (not '%') off the pattern and tells whether it matches.
bool matchesElement(char32_t character, std::string_view& pattern) {
  const std::size_t close = pattern.front() == '[' ? pattern.find(']', 1) : std::string_view::npos;
  if (close != std::string_view::npos) {
    const std::string_view set = pattern.substr(1, close - 1);
    pattern.remove_prefix(close + 1);
    return isInSet(smallLetter(character), set);
  }
  const bool any = pattern.front() == '_';
  return smallLetter(takeCharacter(pattern)) == smallLetter(character) || any;
}

}  // namespace

// Only the last '%' needs a second try: whatever an earlier one took, a later one can take as well.
bool matchesPattern(std::string_view text, std::string_view pattern) {
  std::string_view retryText;
  std::string_view retryPattern;
  bool canRetry = false;
  while (!text.empty() || !pattern.empty()) {
    if (!pattern.empty() && pattern.front() == '%') {
      pattern.remove_prefix(1);
      retryText = text;
      retryPattern = pattern;
      canRetry = true;
      continue;
    }
    if (!text.empty() && !pattern.empty() && matchesElement(takeCharacter(text), pattern)) continue;
    if (!canRetry || retryText.empty()) return false;
    (void)takeCharacter(retryText);
    text = retryText;
    pattern = retryPattern;
  }
  return true;
}

}  // namespace pelmora::sql
