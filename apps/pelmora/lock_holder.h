// Who holds the lock of a database that a command waits for.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/patience.h>

#include <string>

namespace pelmora::cli {

class Progress;

// "process 4711 (python3)", or "another program" where the system does not tell: only Linux does,
// of programs on the same machine. The file is not opened.
[[nodiscard]] std::string lockHolder(const std::string& database);

// Waits at most so long and shows whom it waits for. `progress` must outlive the connection.
[[nodiscard]] Patience patienceWith(const std::string& database, std::chrono::milliseconds wait,
                                    Progress& progress);

}  // namespace pelmora::cli
