// Connections that let the component's operations take part in a transaction.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/database.h>

#include <string>

namespace pelmora::history {

// Passes everything on to `open` but opening and closing: an operation that opens and closes a
// connection of its own works on this one, inside its transaction.
[[nodiscard]] PELMORA_API ConnectionPtr sharedConnection(const ConnectionPtr& open);

// A stand's connection whose rows, where a statement inserts them IN the file at `curvesPath`, are
// added through `curves`: a second connection to that file would wait for the transaction's end.
[[nodiscard]] PELMORA_API ConnectionPtr standConnection(const ConnectionPtr& stand,
                                                        const ConnectionPtr& curves,
                                                        const std::string& curvesPath);

}  // namespace pelmora::history
