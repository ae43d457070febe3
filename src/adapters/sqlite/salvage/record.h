// A stored row or key as values.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/page_file.h"

#include <compare>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace pelmora::sqlite::salvage {

struct Blob {
  std::string bytes;
  bool operator==(const Blob&) const = default;
};

// Null, whole number, number, text, bytes: in the order in which an index sorts them.
using Field = std::variant<std::monostate, std::int64_t, double, std::string, Blob>;
using Record = std::vector<Field>;

// False where the payload cannot have been written by the engine: its length does not fit its
// values, a whole number is longer than it need be, a text is not UTF-8, a number is NaN or of a
// size that no measurement has. A number that was changed to another one cannot be told.
[[nodiscard]] bool readRecord(Bytes payload, Record& record);

// As an index sorts: texts without regard to the case of ASCII letters.
[[nodiscard]] std::weak_ordering compareAsIndexed(const Field& a, const Field& b);
// Whether a table's value and its copy in an index are the same.
[[nodiscard]] bool areEqual(const Field& a, const Field& b);

}  // namespace pelmora::sqlite::salvage
