// Fields of damaged files as parameters and results of statements.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/record.h"

#include <cstddef>
#include <string>

namespace pelmora::sqlite {
class PreparedStatement;
}

namespace pelmora::sqlite::salvage {

// The field must live until the statement is reset or bound anew.
void bindField(PreparedStatement& statement, int parameter, const Field& field);
// "c0, c1, c2": names for the columns of a table that holds fields.
[[nodiscard]] std::string numberedNames(const char* name, std::size_t count);
[[nodiscard]] Field fieldAt(const PreparedStatement& statement, int column);

}  // namespace pelmora::sqlite::salvage
