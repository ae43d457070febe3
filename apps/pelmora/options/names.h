// Names and paths that a user gives.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// The longest path of a database that its engine opens, with room for its journal beside it.
inline constexpr std::size_t longestDatabasePath = 500;

// A name to look for, which goes into statements: not empty, no apostrophe, no control characters.
// Other programs may have stored names that this one would not store.
//
// Errors: Trouble usage that names `what`.
void requireName(const std::string& what, const std::string& name);

// A name to store: also UTF-8, without characters that make it read as another one.
//
// Errors: Trouble usage that names `what`.
void requireNewName(const std::string& what, const std::string& name);

// A path that messages, tables and JSON can show as it is. Errors: Trouble usage that names `what`.
void requirePath(const std::string& what, const std::string& path);

// The same for a database. Errors: also Trouble database where it is longer than
// longestDatabasePath, counted from the root and in bytes.
void requireDatabasePath(const std::string& what, const std::string& path);

}  // namespace pelmora::cli
