// Addresses of databases on a server, for the client library.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::postgres {

// The address with what the client should know beside it: who asks, and how long to wait for a
// server that does not answer, unless the address or the environment says so.
[[nodiscard]] std::string connectionAddress(std::string_view location);

}  // namespace pelmora::postgres
