// Fields of damaged files as parameters and results of statements.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/record.h"

namespace pelmora::sqlite {
class PreparedStatement;
}

namespace pelmora::sqlite::salvage {

// The field must live until the statement is reset or bound anew.
void bindField(PreparedStatement& statement, int parameter, const Field& field);
[[nodiscard]] Field fieldAt(const PreparedStatement& statement, int column);

}  // namespace pelmora::sqlite::salvage
