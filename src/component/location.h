// The database location: splitting a path, and the connection that belongs to a location.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <string>

namespace pelmora {

struct Platform;
struct SharedState;

// Where the curve database lies until the host says otherwise.
inline constexpr const char* defaultLocation = "c:\\program files\\quorvane\\Pelmora.mdb";

// Splits a path. A dot anywhere in the text makes it a file path; without one it is a folder, and
// Folder gets a backslash behind it. Nothing is checked.
[[nodiscard]] DatabaseLocation splitLocation(const std::string& path);

// The unopened connection to `location`. An empty location is replaced by the shared one, in the
// caller's variable too.
//
// Errors: Error 0x80040207 "Empty database location" if the shared one is empty as well.
[[nodiscard]] ConnectionPtr getConnection(std::string& location, const SharedState& shared,
                                          const Platform& platform);

}  // namespace pelmora
