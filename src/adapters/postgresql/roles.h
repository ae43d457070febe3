// Who may do what in a curve database: roles without a login, to be granted to people and programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::postgres {

// Each may do what the ones before it may.
struct Roles {
  std::string reader, writer, owner;  // reads rows; changes rows; changes tables
};

// Roles are known to the whole server, so that their names tell the database and, unless it is
// "public", the schema: pelmora_lab_reader.
//
// Errors: Error 5 where the names would be longer than the server takes.
[[nodiscard]] Roles rolesOf(const std::string& database, const std::string& schema);

// Makes those that are not there.
[[nodiscard]] std::vector<std::string> createRoleStatements(const Roles& roles);
// What an administrator runs for a user who must not create roles.
[[nodiscard]] std::string forAnAdministrator(const Roles& roles, const std::string& user);

// What they may do with the tables of the schema, and with those that the owner makes later. Then
// the owner's rights hold for the rest of the transaction.
[[nodiscard]] std::vector<std::string> grantStatements(const Roles& roles,
                                                       const std::string& schema);

}  // namespace pelmora::postgres
