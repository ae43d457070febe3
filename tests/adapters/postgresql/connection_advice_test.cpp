// What to look at when no connection comes about, by the reason that the client library gives.
// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"
#include "adapters/postgresql/server_error.h"

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

void expectAdvice(const std::string& advice, const std::string& reason) {
  const std::string told =
      postgres::cannotConnect(postgres::ServerError({"", reason, true}), "lab").what();
  EXPECT_NE(told.find("'lab'. " + advice), std::string::npos) << told;
}

TEST(connection_advice, names_the_certificate_only_if_that_is_the_trouble) {
  for (const char* reason :
       {"connection to server at \"db\" (10.0.0.1), port 5432 failed: SSL error: certificate "
        "verify "
        "failed",
        "connection to server at \"db\" (10.0.0.1), port 5432 failed: root certificate file "
        "\"/home/ada/.postgresql/root.crt\" does not exist",
        "connection to server at \"db\" (10.0.0.1), port 5432 failed: server certificate for "
        "\"lab\" does not match host name \"db\""}) {
    expectAdvice("Check that sslrootcert", reason);
  }
  expectAdvice("Check the address", "FATAL:  database \"certificates\" does not exist");
}

TEST(connection_advice, names_the_service_file_only_if_that_is_the_trouble) {
  for (const char* reason :
       {"definition of service \"lab\" not found", "service file \"/etc/services.conf\" not found",
        "syntax error in service file \"/etc/services.conf\", line 3"}) {
    expectAdvice("Check the name of the service", reason);
  }
  expectAdvice("Check the address",
               "could not translate host name \"db\" to address: Name or service not known");
}

TEST(connection_advice, names_the_password_that_is_missing_or_wrong) {
  expectAdvice("Check the user and the password", "fe_sendauth: no password supplied");
  expectAdvice("Check the user and the password",
               "FATAL:  password authentication failed for user \"ada\"");
}

}  // namespace
}  // namespace pelmora
