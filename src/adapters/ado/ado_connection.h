// Connections through ADO.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>

#include <string>

struct IDispatch;

namespace pelmora {

// Around an ADO connection that somebody else made and opened; adds a reference, closes only where
// told.
//
// Errors: what ADO reports, with its number and description, from the connection's Errors if the
//         failed call does not tell them; 0x80004005 is passed on as it is, and callers that wait
//         on a locked database take it as one.
[[nodiscard]] ConnectionPtr adoConnection(IDispatch* connection);

// A new connection to an Access file, not yet open: client-side cursors, provider Jet 4.0.
//
// Errors: Error 429 if ADO is not installed. A missing file or provider shows when it is opened.
[[nodiscard]] ConnectionPtr accessConnection(const std::string& location);

// Whether the location is Access's business: a file in its format or, where there is no file, a
// name that ends in .mdb, .mde, .accdb or .accde, or in no extension.
[[nodiscard]] bool isAccessLocation(const std::string& location);

}  // namespace pelmora
