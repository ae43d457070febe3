// The driver that fits what a location holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/patience.h>

#include <functional>
#include <string>

namespace pelmora {

// The unopened connection to a location; null if no driver is built in. A location that holds
// nothing usable gets the SQLite driver, which says so when it is opened. From the second one of a
// process on, what a connection has learnt about a database is known to those after it.
[[nodiscard]] ConnectionPtr databaseConnection(const std::string& location,
                                               const Patience& patience = {});

// The same from the first one on, for the operations of one host, each of which opens a connection
// and closes it again.
[[nodiscard]] std::function<ConnectionPtr(const std::string& location)> operationConnections();

}  // namespace pelmora
