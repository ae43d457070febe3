// SQLite's check of its own files, in words for people.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/integrity.h"

#include <cstddef>
#include <vector>

struct sqlite3;

namespace pelmora::sqlite {

// Errors: Error, genericFailure if the database is locked.
[[nodiscard]] std::vector<IntegrityProblem> integrityProblems(sqlite3* database, std::size_t most);

}  // namespace pelmora::sqlite
