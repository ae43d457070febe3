// SPDX-License-Identifier: MIT
#include "adapters/access/helper/field_value.h"

#include "adapters/access/helper/exact_text.h"
#include "adapters/access/helper/jet_text.h"

#include <bit>
#include <cmath>
#include <limits>

namespace pelmora::access {
namespace {

constexpr std::size_t unitsOfAnyLength = std::numeric_limits<std::size_t>::max();

// SQL cannot store infinities and NaN; they would silently become null.
double finite(double number) {
  if (!std::isfinite(number)) throw Damage("it is not a finite number");
  return number;
}

template <class Integer>
std::int64_t wholeNumber(Bytes field) {
  return static_cast<Integer>(numberAt(field, 0, sizeof(Integer)));
}

}  // namespace

std::optional<OwnColumnType> typeFor(const AccessColumn& column) {
  switch (column.type) {
    case MDB_BOOL:
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT: return OwnColumnType::whole;
    case MDB_FLOAT:
    case MDB_DOUBLE: return OwnColumnType::real;
    case MDB_TEXT:
    case MDB_MEMO:
    case MDB_DATETIME:
    case MDB_REPID:
    case MDB_BINARY:
    case MDB_OLE: return OwnColumnType::text;
    case MDB_MONEY:
    case MDB_NUMERIC: return OwnColumnType::anything;
    default: return std::nullopt;
  }
}

Value fieldValue(LongValues& longValues, const AccessColumn& column, Bytes field) {
  const std::size_t size = sizeOfType(column.type);
  if (size != 0 && field.size() != size) throw Damage("its size is wrong");
  switch (column.type) {
    case MDB_BYTE: return wholeNumber<std::uint8_t>(field);
    case MDB_INT: return wholeNumber<std::int16_t>(field);
    case MDB_LONGINT: return wholeNumber<std::int32_t>(field);
    case MDB_MONEY: return currencyText(wholeNumber<std::int64_t>(field));
    case MDB_FLOAT: return finite(std::bit_cast<float>(u32(field, 0)));
    case MDB_DOUBLE: return finite(std::bit_cast<double>(numberAt(field, 0, 8)));
    case MDB_DATETIME: return dateText(finite(std::bit_cast<double>(numberAt(field, 0, 8))));
    case MDB_BINARY: return hexText(field);
    case MDB_OLE: return hexText(longValues.read(field));
    case MDB_TEXT: return textOf(field, column.size / 2);
    case MDB_MEMO: return textOf(longValues.read(field), unitsOfAnyLength);
    case MDB_REPID: return identityText(field);
    case MDB_NUMERIC: return decimalText(field, column.scale);
    default: throw Damage("it is of an unknown type");
  }
}

}  // namespace pelmora::access
