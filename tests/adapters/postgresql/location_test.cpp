// SPDX-License-Identifier: MIT
#include "adapters/postgresql/location.h"
#include "adapters/postgresql/postgres_database.h"
#include "tests/support/curve_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace pelmora {
namespace {

TEST(postgres_location, tells_who_asks_and_how_long_to_wait) {
  EXPECT_EQ(postgres::connectionAddress("postgresql://host/lab"),
            "postgresql://host/lab?fallback_application_name=pelmora&connect_timeout=10");
  EXPECT_EQ(postgres::connectionAddress("postgresql:///?service=lab"),
            "postgresql:///?service=lab&fallback_application_name=pelmora");
  EXPECT_EQ(postgres::connectionAddress(
                "postgresql://h/lab?connect_timeout=3&fallback_application_name=x"),
            "postgresql://h/lab?connect_timeout=3&fallback_application_name=x");
}

TEST(postgres_location, that_nobody_answers_at_is_an_error_without_the_password) {
  const ConnectionPtr connection =
      postgresConnection("postgresql://ada:s3cret@/lab?host=/nonexistent/folder");
  const test::Failure failure = test::failureOf([&] { connection->open(); });
  EXPECT_NE(failure.number, 0);
  EXPECT_FALSE(connection->isOpen());
  EXPECT_EQ(failure.description.find("s3cret"), std::string::npos) << failure.description;
}

}  // namespace
}  // namespace pelmora
