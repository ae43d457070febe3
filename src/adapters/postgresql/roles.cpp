// SPDX-License-Identifier: MIT
#include "adapters/postgresql/roles.h"

#include "adapters/postgresql/statement_names.h"
#include "base/run_time_error.h"

namespace pelmora::postgres {

namespace {

constexpr std::size_t longestName = 63;

// What is there already may have been made by an administrator for a user who could not.
std::string createRole(const std::string& name) {
  return "DO $f$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = " + quotedText(name) +
         ") THEN CREATE ROLE " + quotedName(name) + " NOLOGIN; END IF; END $f$";
}

std::string grantRole(const std::string& name, const std::string& memberText,
                      const std::string& member) {
  return "DO $f$ BEGIN IF NOT pg_has_role(" + memberText + ", " + quotedText(name) +
         ", 'MEMBER') THEN GRANT " + quotedName(name) + " TO " + member + "; END IF; END $f$";
}

}  // namespace

Roles rolesOf(const std::string& database, const std::string& schema) {
  const std::string stem = "pelmora_" + database + (schema == "public" ? "" : "_" + schema);
  Roles roles{stem + "_reader", stem + "_writer", stem + "_owner"};
  if (roles.reader.size() > longestName) {
    throw Error(static_cast<std::int32_t>(RunTimeError::invalidArgument), "Pelmora",
                "The name '" + roles.reader +
                    "' is too long for a role of the server. Give the database or the schema a "
                    "shorter name.");
  }
  return roles;
}

std::vector<std::string> createRoleStatements(const Roles& roles) {
  return {createRole(roles.reader),
          createRole(roles.writer),
          createRole(roles.owner),
          grantRole(roles.reader, quotedText(roles.writer), quotedName(roles.writer)),
          grantRole(roles.writer, quotedText(roles.owner), quotedName(roles.owner)),
          grantRole(roles.owner, "current_user", "CURRENT_USER")};
}

std::string forAnAdministrator(const Roles& roles, const std::string& user) {
  const std::string reader = quotedName(roles.reader), writer = quotedName(roles.writer),
                    owner = quotedName(roles.owner);
  return "CREATE ROLE " + reader + "; CREATE ROLE " + writer + "; CREATE ROLE " + owner +
         "; GRANT " + reader + " TO " + writer + "; GRANT " + writer + " TO " + owner + "; GRANT " +
         owner + " TO " + quotedName(user) + ";";
}

std::vector<std::string> grantStatements(const Roles& roles, const std::string& schema) {
  const std::string reader = quotedName(roles.reader), writer = quotedName(roles.writer),
                    owner = quotedName(roles.owner), place = quotedName(schema);
  const std::string later = "ALTER DEFAULT PRIVILEGES IN SCHEMA " + place + " GRANT ";
  return {"GRANT USAGE ON SCHEMA " + place + " TO " + reader,
          "GRANT CREATE ON SCHEMA " + place + " TO " + owner,
          "SET LOCAL ROLE " + owner,
          later + "SELECT ON TABLES TO " + reader,
          later + "SELECT ON SEQUENCES TO " + reader,
          later + "INSERT, UPDATE, DELETE ON TABLES TO " + writer,
          later + "USAGE, UPDATE ON SEQUENCES TO " + writer};
}

}  // namespace pelmora::postgres
