// Roads to a server over a network: encryption, passwords and service names.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/environment.h"
#include "tests/support/postgres_server.h"

#include <string>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* password = "hush4711";

// User ada, who needs a password, and her curve database with one meter.
class server_connections : public CommandTest {
 protected:
  void SetUp() override {
    if (!PostgresServer::lack().empty()) GTEST_SKIP() << PostgresServer::lack();
    PostgresServer& server = PostgresServer::encrypted();
    if (database_.empty()) {
      database_ = server.newDatabase();
      server.run("postgres",
                 std::string("CREATE ROLE ada LOGIN SUPERUSER PASSWORD '") + password + "'");
      done({"init", server.address(database_)});
      done({"raw", server.address(database_), write("p.csv", "1,2\n3,4\n"), "--meter", "M1",
            "--register", "--series", "S"});
    }
    // Nothing of the user who runs the tests.
    home_.emplace("HOME", scratch.path().string());
    root_ = copyOf("root.pem");
  }

  static PostgresServer& server() { return PostgresServer::encrypted(); }
  // For whoever may not enter the server's folder.
  std::string copyOf(const std::string& name) const {
    return write(name, bytesOf(server().file(name)));
  }
  static std::string address(const std::string& parameters = "") {
    return server().networkAddress(database_, "ada") + parameters;
  }
  [[nodiscard]] std::string verified() const {
    return address("?sslmode=verify-full&sslrootcert=" + root_);
  }
  void expectMeter(const std::string& location) const {
    EXPECT_THAT(done({"show", location}).output, HasSubstr("M1")) << location;
  }
  void expectRefused(const std::string& location, const std::string& why,
                     const std::string& advice) const {
    EXPECT_THAT(trouble(3, {"show", location}),
                AllOf(HasSubstr(why), HasSubstr(advice), Not(HasSubstr(password))));
  }
  // A file that the client library takes passwords from.
  std::string passwordFile() const {
    const std::string path = write("pgpass", "localhost:" + std::to_string(server().port()) + ":" +
                                                 database_ + ":ada:" + password + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    return path;
  }
  std::string serviceFile() const {
    return write("services.conf", "[lab]\nhost=localhost\nport=" + std::to_string(server().port()) +
                                      "\nuser=ada\ndbname=" + database_ + "\npassword=" + password +
                                      "\nsslmode=verify-full\nsslrootcert=" + root_ + "\n");
  }

  std::string root_;

 private:
  static inline std::string database_;
  std::optional<Environment> home_;
};

TEST_F(server_connections, are_encrypted_with_the_certificate_of_the_right_server) {
  const Environment environment("PGPASSWORD", password);
  const auto encrypted = [] {
    const std::string log = bytesOf(server().file("log"));
    std::size_t count = 0;
    const std::string mark = "application_name=pelmora SSL enabled";
    for (std::size_t at = log.find(mark); at != std::string::npos; at = log.find(mark, at + 1))
      ++count;
    return count;
  };
  const std::size_t before = encrypted();
  expectMeter(verified());
  expectMeter(address("?sslmode=require"));
  const Environment settings({{"PGSSLMODE", "verify-full"}, {"PGSSLROOTCERT", root_}});
  expectMeter(address());
  EXPECT_EQ(encrypted(), before + 3) << "by the server's own log";
}

TEST_F(server_connections, are_refused_where_the_certificate_is_wrong) {
  const Environment environment("PGPASSWORD", password);
  expectRefused(address("?sslmode=verify-full&sslrootcert=" + copyOf("other.pem")),
                "certificate verify failed", "Check that sslrootcert names");
  expectRefused(address("?sslmode=verify-full&sslrootcert=" + scratch.file("none.pem")), "none.pem",
                "Check that sslrootcert names");
  expectRefused(address("?sslmode=verify-full"), "root.crt", "Check that sslrootcert names");
  // The same computer under a name that the certificate does not have.
  std::string other = verified();
  other.replace(other.find("localhost"), 9, "127.0.0.1");
  expectRefused(other, "does not match host name", "names the server as its certificate does");
  expectRefused(address("?sslmode=disable"), "no encryption", "Check the address");
}

TEST_F(server_connections, need_the_password_and_never_show_it) {
  expectRefused(verified(), "no password supplied", "PGPASSWORD");
  {
    const Environment wrong("PGPASSWORD", "wr0ng");
    expectRefused(verified(), "password authentication failed", "PGPASSWORD");
    EXPECT_THAT(trouble(3, {"show", verified()}), Not(HasSubstr("wr0ng")));
  }
  const Environment file("PGPASSFILE", passwordFile());
  expectMeter(verified());
}

TEST_F(server_connections, take_everything_from_a_service) {
  const Environment file("PGSERVICEFILE", serviceFile());
  expectMeter("postgresql://?service=lab");
  expectMeter("postgresql:///?service=lab");
  expectRefused("postgresql:///?service=none", "none", "PGSERVICEFILE");
  const Environment service("PGSERVICE", "lab");
  expectMeter("postgresql://");
  done({"raw", "postgresql://", write("q.csv", "1,2\n3,4\n"), "--meter", "M1", "--series", "S"});
  EXPECT_THAT(done({"history", "postgresql://"}).output,
              AllOf(HasSubstr("raw"), Not(HasSubstr(password))));
}

}  // namespace
}  // namespace pelmora::test
