// Reading what a damaged curve database still holds, and bringing it into a new one.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/patience.h>
#include <pelmora/salvage.h>

#include <string>

namespace pelmora {

// Reads all that can be read of the file at `path`. With `newPath` a curve database is made there
// that holds it, rows and ids as they were; a row of which anything is damaged is left out. Where
// it fails nothing is left behind. `path` is not changed, apart from what any program that opens
// the database would do.
//
// Errors: Error 53, 70, 75 if `path` cannot be read, 321 if nothing of it is a database, 58
//         if there is a file at `newPath` already, genericFailure if `path` stays locked,
//         0x80004004 if the patience asked it to stop.
[[nodiscard]] PELMORA_API SalvageReport salvageDatabase(const std::string& path,
                                                        const std::string& newPath = {},
                                                        const Patience& patience = {});

}  // namespace pelmora
