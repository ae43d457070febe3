// The layout of records is published: https://www.sqlite.org/fileformat2.html, section 2.1.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/record.h"

#include "adapters/sqlite/salvage/tree_page.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace pelmora::sqlite::salvage {
namespace {

// Well-formed UTF-8 without zero bytes, as the Unicode standard's table 3-7 has it.
bool isText(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t at) -> unsigned {
      return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned first = byte(i), second = byte(i + 1);
    const auto follows = [&](std::size_t at) { return (byte(at) & 0xC0U) == 0x80U; };
    std::size_t length = 1;
    if (first == 0) return false;
    if (first >= 0x80U) {
      if (first < 0xC2U || first > 0xF4U || !follows(i + 1)) return false;
      length = first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
      if (length > 2 && !follows(i + 2)) return false;
      if (length > 3 && !follows(i + 3)) return false;
      if ((first == 0xE0U && second < 0xA0U) || (first == 0xEDU && second > 0x9FU) ||
          (first == 0xF0U && second < 0x90U) || (first == 0xF4U && second > 0x8FU))
        return false;
    }
    i += length;
  }
  return true;
}

// Beyond these only damage reaches: Roshko numbers, frequencies and pressures stay far inside.
bool isPlausible(double number) {
  constexpr double largest = 1e100, smallest = 1e-100;
  if (std::isinf(number)) return true;
  return std::abs(number) <= largest && std::abs(number) >= smallest;
}

std::int64_t bigEndian(Bytes bytes) {
  std::uint64_t value = bytes[0] >= 0x80U ? ~std::uint64_t{0} : 0;
  for (const std::uint8_t byte : bytes) value = value << 8U | byte;
  return static_cast<std::int64_t>(value);
}

// Whole numbers take as few bytes as they need.
bool isShortest(std::int64_t value, std::size_t size) {
  constexpr std::size_t sizes[]{1, 2, 3, 4, 6, 8};
  if (value == 0 || value == 1) return false;  // types of their own
  for (const std::size_t shorter : sizes) {
    if (shorter >= size) return true;
    const std::int64_t limit = std::int64_t{1} << (8 * shorter - 1);
    if (value >= -limit && value < limit) return false;
  }
  return true;
}

constexpr std::uint64_t realType = 7, zeroType = 8, oneType = 9;

std::optional<std::uint64_t> sizeOf(std::uint64_t type) {
  constexpr std::uint64_t sizes[]{0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
  if (type < 10) return sizes[type];
  if (type < 12) return std::nullopt;  // never written
  return (type - 12) / 2;
}

bool readField(std::uint64_t type, Bytes bytes, Field& field) {
  if (type == 0) {
    field = std::monostate();
  } else if (type == zeroType || type == oneType) {
    field = static_cast<std::int64_t>(type - zeroType);
  } else if (type == realType) {
    const auto number = std::bit_cast<double>(bigEndian(bytes));
    if (!isPlausible(number)) return false;
    field = number;
  } else if (type < realType) {
    const std::int64_t value = bigEndian(bytes);
    if (!isShortest(value, bytes.size())) return false;
    field = value;
  } else {
    std::string text(bytes.begin(), bytes.end());
    if (type % 2 == 0) {
      field = Blob{std::move(text)};
    } else {
      if (!isText(text)) return false;
      field = std::move(text);
    }
  }
  return true;
}

// Numbers of both kinds stand together, before texts.
int rank(const Field& field) {
  constexpr int ranks[]{0, 1, 1, 2, 3};
  return ranks[field.index()];
}

double numberOf(const Field& field) {
  const auto* whole = std::get_if<std::int64_t>(&field);
  return whole != nullptr ? static_cast<double>(*whole) : std::get<double>(field);
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::weak_ordering compareTexts(std::string_view a, std::string_view b) {
  return std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(lower(x)) <=> static_cast<unsigned char>(lower(y));
      });
}

}  // namespace

bool readRecord(Bytes payload, Record& record) {
  record.clear();
  std::size_t at = 0;
  std::uint64_t headerSize = 0;
  if (!readVarint(payload, at, headerSize) || headerSize < at || headerSize > payload.size())
    return false;
  const Bytes header = payload.first(static_cast<std::size_t>(headerSize));
  std::uint64_t body = headerSize;
  while (at < header.size()) {
    std::uint64_t type = 0;
    if (!readVarint(header, at, type)) return false;
    const auto size = sizeOf(type);
    if (!size || *size > payload.size() - body) return false;
    Field field;
    if (!readField(type,
                   payload.subspan(static_cast<std::size_t>(body), static_cast<std::size_t>(*size)),
                   field))
      return false;
    record.push_back(std::move(field));
    body += *size;
  }
  return body == payload.size();
}

std::weak_ordering compareAsIndexed(const Field& a, const Field& b) {
  if (const auto byRank = rank(a) <=> rank(b); byRank != 0) return byRank;
  if (rank(a) == 0) return std::weak_ordering::equivalent;
  if (const auto* x = std::get_if<std::int64_t>(&a), *y = std::get_if<std::int64_t>(&b); x && y)
    return *x <=> *y;
  if (rank(a) == 1) {
    const double x = numberOf(a), y = numberOf(b);
    return x < y   ? std::weak_ordering::less
           : x > y ? std::weak_ordering::greater
                   : std::weak_ordering::equivalent;
  }
  if (rank(a) == 2) return compareTexts(std::get<std::string>(a), std::get<std::string>(b));
  return std::get<Blob>(a).bytes <=> std::get<Blob>(b).bytes;
}

bool areEqual(const Field& a, const Field& b) {
  return rank(a) == 1 ? compareAsIndexed(a, b) == 0 : a == b;
}

}  // namespace pelmora::sqlite::salvage
