// SPDX-License-Identifier: MIT
#include "adapters/access/helper/long_value.h"

namespace pelmora::access {
namespace {

// A field holds the length (its top byte is the kind of storage), a place, and four bytes that are
// not used here.
constexpr std::size_t fieldHead = 12;
constexpr std::size_t placeAt = 4;
constexpr std::size_t nextPlaceSize = 4;
enum class Storage : std::uint8_t { chain = 0x00, oneRow = 0x40, here = 0x80 };

void append(std::vector<unsigned char>& value, Bytes bytes) {
  value.insert(value.end(), bytes.begin(), bytes.end());
}

}  // namespace

Bytes LongValues::take(const DataPage& page, RowPlace place) {
  const Bytes row = page.row(place.row);
  if (page.kind(place.row) != DataPage::RowKind::own)
    throw Damage("the long value is deleted at " + placeText(place));
  if (!taken_.insert(place).second)
    throw Damage("the long value at " + placeText(place) + " is used twice");
  return row;
}

std::vector<unsigned char> LongValues::oneRow(RowPlace place) {
  const DataPage page(file_, place.page, DataPage::longValues);
  std::vector<unsigned char> value;
  append(value, take(page, place));
  return value;
}

// Each row of a chain begins with the place of the next one.
std::vector<unsigned char> LongValues::chain(RowPlace place, std::size_t length) {
  std::vector<unsigned char> value;
  while (place.page != 0 && value.size() <= length) {
    const DataPage page(file_, place.page, DataPage::longValues);
    const Bytes row = take(page, place);
    place = rowPlaceAt(row, 0);
    append(value, row.subspan(nextPlaceSize));
  }
  return value;
}

std::vector<unsigned char> LongValues::read(Bytes field) {
  if (field.size() < fieldHead) throw Damage("the long value is cut off");
  const std::size_t length = u24(field, 0);
  std::vector<unsigned char> value;
  switch (static_cast<Storage>(field[3])) {
    case Storage::here: append(value, field.subspan(fieldHead)); break;
    case Storage::oneRow: value = oneRow(rowPlaceAt(field, placeAt)); break;
    case Storage::chain: value = chain(rowPlaceAt(field, placeAt), length); break;
    default: throw Damage("the long value is in a place of an unknown kind");
  }
  if (value.size() != length) {
    throw Damage("the long value has " + std::to_string(value.size()) + " bytes in place of " +
                 std::to_string(length));
  }
  return value;
}

}  // namespace pelmora::access
