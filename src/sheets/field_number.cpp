// SPDX-License-Identifier: MIT
#include "sheets/field_number.h"

#include "base/ascii_character.h"
#include "base/text_case.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

namespace pelmora::sheets {
namespace {

// No-break space, thin space, narrow no-break space.
constexpr std::array<std::string_view, 5> blanks{" ", "\t", "\xC2\xA0", "\xE2\x80\x89",
                                                 "\xE2\x80\xAF"};
constexpr std::array<std::string_view, 2> apostrophes{"'", "\xE2\x80\x99"};
constexpr std::array<std::string_view, 3> signs{"-", "+", "\xE2\x88\x92"};

// Empty if none is.
template <std::size_t count, class Test>
std::string_view firstThat(const std::array<std::string_view, count>& candidates, Test isThere) {
  const auto found = std::find_if(candidates.begin(), candidates.end(), isThere);
  return found == candidates.end() ? std::string_view() : *found;
}

template <std::size_t count>
std::string_view startsWithOne(std::string_view text,
                               const std::array<std::string_view, count>& candidates) {
  if (text.empty()) return {};
  return firstThat(candidates, [text](std::string_view candidate) {
    return text.front() == candidate.front() && text.starts_with(candidate);
  });
}

template <std::size_t count>
std::string_view endsWithOne(std::string_view text,
                             const std::array<std::string_view, count>& candidates) {
  if (text.empty()) return {};
  return firstThat(candidates, [text](std::string_view candidate) {
    return text.back() == candidate.back() && text.ends_with(candidate);
  });
}

// A number that is written as std::from_chars reads it, as most are. That would read "inf", too.
std::optional<double> plainNumber(std::string_view text) {
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  if (text.size() <= first || (!isDigit(text[first]) && text[first] != '.')) return std::nullopt;
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, code] = std::from_chars(text.data(), end, number);
  if (code != std::errc() || stop != end) return std::nullopt;
  return number;
}

// Reads a text from its start and writes what std::from_chars understands.
class Scan {
 public:
  Scan(std::string_view text, NumberStyle style) : rest_(text), style_(style) {}

  std::optional<double> value() {
    takeSign();
    if (!takeWhole()) return std::nullopt;
    const std::size_t wholeDigits = plain_.size() - (plain_.starts_with('-') ? 1 : 0);
    std::size_t fraction = 0;
    if (take(style_.decimal)) {
      plain_ += '.';
      fraction = takeDigits();
    }
    if (wholeDigits + fraction == 0 || !takeExponent() || !rest_.empty()) return std::nullopt;
    return plainNumber(plain_);
  }

 private:
  bool take(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  std::size_t takeDigits() {
    std::size_t count = 0;
    for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1), ++count)
      plain_ += rest_.front();
    return count;
  }
  void takeSign() {
    const std::string_view unsignedText = withoutSign(rest_);
    if (unsignedText.size() < rest_.size() && rest_.front() != '+') plain_ = '-';
    rest_ = unsignedText;
  }
  // What separates the next group of digits; empty if none follows.
  [[nodiscard]] std::string_view groupSign() const {
    if (const auto blank = startsWithOne(rest_, blanks); !blank.empty() && blank != "\t")
      return blank;
    if (const auto mark = startsWithOne(rest_, apostrophes); !mark.empty()) return mark;
    const char other = style_.decimal == '.' ? ',' : '.';
    return style_.groupsThousands && rest_.starts_with(other) ? rest_.substr(0, 1)
                                                              : std::string_view();
  }
  bool takeWhole() {
    const std::size_t first = takeDigits();
    const std::string_view sign = groupSign();
    if (sign.empty()) return true;
    if (first == 0 || first > groupSize) return false;
    while (rest_.starts_with(sign)) {
      rest_.remove_prefix(sign.size());
      if (takeDigits() != groupSize) return false;
    }
    return true;
  }
  bool takeExponent() {
    if (!take('e') && !take('E')) return true;
    plain_ += 'e';
    if (take('-')) {
      plain_ += '-';
    } else {
      (void)take('+');
    }
    return takeDigits() > 0;
  }

  std::string_view rest_;
  NumberStyle style_;
  std::string plain_;
};

}  // namespace

std::string_view trimmed(std::string_view text) {
  // Most texts have nothing to trim.
  const auto isVisible = [](char c) { return c > ' ' && c <= '~'; };
  if (text.empty() || (isVisible(text.front()) && isVisible(text.back()))) return text;
  for (auto blank = startsWithOne(text, blanks); !blank.empty();
       blank = startsWithOne(text, blanks))
    text.remove_prefix(blank.size());
  for (auto blank = endsWithOne(text, blanks); !blank.empty(); blank = endsWithOne(text, blanks))
    text.remove_suffix(blank.size());
  return text;
}

std::string_view withoutSign(std::string_view text) {
  const std::string_view sign = startsWithOne(text, signs);
  return text.substr(sign.size());
}

std::string_view plainGrouping(std::string_view number) {
  const auto isPlain = [](char c) { return isDigit(c) || isMark(c); };
  const auto other = std::ranges::find_if_not(number, isPlain);
  const std::string_view rest = number.substr(static_cast<std::size_t>(other - number.begin()));
  if (!startsWithOne(rest, apostrophes).empty()) return "'";
  return startsWithOne(rest, blanks).empty() ? "" : " ";
}

std::optional<double> fieldNumber(std::string_view text, NumberStyle style) {
  text = trimmed(text);
  if (style.decimal == '.') {
    if (const auto number = plainNumber(text)) return number;
  }
  return Scan(text, style).value();
}

bool isMissingValue(std::string_view text) {
  constexpr std::array<std::string_view, 5> words{"nan", "n/a", "na", "null", "inf"};
  text = trimmed(text);
  return (text.size() > 1 && text.front() == '#') ||
         std::ranges::any_of(words, [&](std::string_view word) { return equalNames(text, word); });
}

bool looksLikeNumber(std::string_view text) {
  text = trimmed(text);
  if (std::ranges::none_of(text, isDigit)) return false;
  return fieldNumber(text, {'.', true}).has_value() || fieldNumber(text, {',', true}).has_value();
}

}  // namespace pelmora::sheets
