// Tests that need a server, and a curve database on it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/postgresql/postgres_database.h"
#include "tests/contract/server_curves.h"
#include "tests/support/curve_file.h"
#include "tests/support/postgres_server.h"

#include <gtest/gtest.h>

namespace pelmora::test {

class ServerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PostgresServer::lack().empty()) GTEST_SKIP() << PostgresServer::lack();
  }
  static PostgresServer& server() { return PostgresServer::running(); }
};

}  // namespace pelmora::test
