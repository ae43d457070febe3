// What the server reports, as errors of the component.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <string>

namespace pelmora::postgres {

class ServerError;

// States that functions of the dialect report (server_functions.h).
namespace dialect_state {
inline constexpr const char* notANumber = "PE013";
inline constexpr const char* noSuchPower = "PE005";
}  // namespace dialect_state

// A lock was not free in time; waiting may help. Every other error is final.
[[nodiscard]] bool isLockTimeout(const ServerError& error);

// The error of a statement. genericFailure is used for a lock, a deadlock and a refused
// serialization alone, because callers try again on it.
//
// database: the address for people, without its password.
[[nodiscard]] Error errorOf(const ServerError& error, const std::string& database);

// The connection broke while something was under way. `outcome`: what was and was not done.
[[nodiscard]] Error connectionLostError(const ServerError& error, const std::string& database,
                                        const std::string& outcome);
// There is no connection to be had.
[[nodiscard]] Error cannotConnect(const ServerError& error, const std::string& database);

}  // namespace pelmora::postgres
