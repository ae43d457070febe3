// A PostgreSQL server of the tests' own, in a temporary folder, on a socket.
//
// It starts when it is first needed, as an ordinary user also where the tests run as root, and ends
// with the test program, however that ends.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/scratch_folder.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace pelmora::test {

class PostgresServer {
 public:
  // Empty where a server can be started; otherwise what is missing.
  [[nodiscard]] static const std::string& lack();
  // Needs lack() empty. Errors: std::runtime_error.
  static PostgresServer& running();
  // Another one, which also listens to localhost: there for encrypted connections alone, with a
  // password. root.pem in its folder has signed its certificate, other.pem has not. Errors as
  // above.
  static PostgresServer& encrypted();

  // Of the administrator; "postgres" is always there.
  [[nodiscard]] std::string address(const std::string& database) const;
  // Of another user who may log in.
  [[nodiscard]] std::string address(const std::string& database, const std::string& user) const;
  // Of encrypted(): on localhost, by TCP.
  [[nodiscard]] std::string networkAddress(const std::string& database,
                                           const std::string& user) const;
  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] std::string file(const std::string& name) const { return folder_.file(name); }
  // A new, empty database. The same name is never given twice.
  [[nodiscard]] std::string newDatabase();
  // Runs statements of the server's own SQL, as the administrator.
  void run(const std::string& database, const std::string& statements) const;
  // A shell's line that talks to a database in the server's own SQL: values without decoration.
  [[nodiscard]] static std::string client(const std::string& address);
  // The answer to a question in the server's own SQL: values without decoration, a line for each
  // row.
  [[nodiscard]] static std::string ask(const std::string& address, const std::string& question);
  // Restarts after an immediate end, which every connection notices.
  void crash();

  ~PostgresServer();
  PostgresServer(const PostgresServer&) = delete;
  PostgresServer& operator=(const PostgresServer&) = delete;

 private:
  enum class Reach { socket, network };
  explicit PostgresServer(Reach reach);
  void makeCertificates() const;
  void mustSucceed(const std::vector<std::string>& command) const;
  [[nodiscard]] pid_t launch(const std::vector<std::string>& command) const;
  void start();
  void stop(int signal);
  [[nodiscard]] bool isReady() const;

  ScratchFolder folder_;
  std::string programs_;
  pid_t server_ = -1;
  int databases_ = 0;
  int port_ = 0;  // 0: a socket alone
};

}  // namespace pelmora::test
