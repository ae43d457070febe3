// SPDX-License-Identifier: MIT
#include "tests/support/postgres_server.h"

#include "tests/support/places.h"

#include <fcntl.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace pelmora::test {

namespace {

namespace fs = std::filesystem;

// The newest of the installed servers: Debian keeps them out of PATH.
std::string folderOfPrograms() {
  std::vector<std::string> found;
  std::error_code ignored;
  for (const auto& version : fs::directory_iterator("/usr/lib/postgresql", ignored)) {
    if (fs::exists(version.path() / "bin" / "initdb", ignored))
      found.push_back((version.path() / "bin").string());
  }
  return found.empty() ? std::string() : *std::ranges::max_element(found);
}

// Null where this process is an ordinary user's already.
const passwd* serverUser() { return geteuid() == 0 ? getpwnam("postgres") : nullptr; }

std::string whatIsMissing() {
  if (folderOfPrograms().empty()) return "no PostgreSQL server is installed";
  if (geteuid() == 0 && serverUser() == nullptr) return "there is no user postgres";
  if (!fs::exists(buildFolder() + "/libpelmora-postgresql.so"))
    return "the module for PostgreSQL is not built";
  return {};
}

// Of localhost. Another program may take it before the server does, but hardly ever will.
int freePort() {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in own{};
  own.sin_family = AF_INET;
  own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof own;
  auto* const address = reinterpret_cast<sockaddr*>(&own);
  const bool isBound =
      bind(listener, address, size) == 0 && getsockname(listener, address, &size) == 0;
  close(listener);
  if (!isBound) throw std::runtime_error("no free port");
  return ntohs(own.sin_port);
}

}  // namespace

const std::string& PostgresServer::lack() {
  static const std::string text = whatIsMissing();
  return text;
}

PostgresServer& PostgresServer::running() {
  static PostgresServer server(Reach::socket);
  return server;
}

PostgresServer& PostgresServer::encrypted() {
  static PostgresServer server(Reach::network);
  return server;
}

PostgresServer::PostgresServer(Reach reach) : programs_(folderOfPrograms()) {
  if (const passwd* user = serverUser()) {
    if (chown(folder_.path().c_str(), user->pw_uid, user->pw_gid) != 0)
      throw std::runtime_error("the folder cannot be given to the server's user");
  }
  mustSucceed({programs_ + "/initdb", "-D", folder_.file("data"), "-A", "trust", "-U", "lab", "-E",
               "UTF8", "--locale=C", "-N"});
  if (reach == Reach::network) {
    makeCertificates();
    std::ofstream(folder_.file("data/pg_hba.conf"))
        << "local all all trust\nhostssl all all localhost scram-sha-256\n";
    port_ = freePort();
  }
  start();
}

void PostgresServer::makeCertificates() const {
  const auto authority = [&](const std::string& name) {
    mustSucceed({"/usr/bin/openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout",
                 file(name + ".key"), "-out", file(name + ".pem"), "-days", "2", "-subj",
                 "/CN=" + name});
  };
  authority("root");
  authority("other");
  mustSucceed({"/usr/bin/openssl", "req", "-newkey", "rsa:2048", "-nodes", "-keyout",
               file("server.key"), "-out", file("request.pem"), "-subj", "/CN=localhost"});
  mustSucceed({"/usr/bin/openssl", "x509", "-req", "-in", file("request.pem"), "-CA",
               file("root.pem"), "-CAkey", file("root.key"), "-CAcreateserial", "-out",
               file("server.pem"), "-days", "2"});
}

void PostgresServer::mustSucceed(const std::vector<std::string>& command) const {
  int status = 0;
  const pid_t child = launch(command);
  if (waitpid(child, &status, 0) != child || status != 0)
    throw std::runtime_error(command[0] + " has failed; see " + file("log"));
}

PostgresServer::~PostgresServer() { stop(SIGINT); }

pid_t PostgresServer::launch(const std::vector<std::string>& command) const {
  const passwd* user = serverUser();
  const std::string log = folder_.file("log");
  std::vector<char*> arguments;
  for (const std::string& argument : command)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process for the server");
  if (child > 0) return child;
  if (user != nullptr &&
      (setgroups(0, nullptr) != 0 || setgid(user->pw_gid) != 0 || setuid(user->pw_uid) != 0)) {
    _exit(126);
  }
  prctl(PR_SET_PDEATHSIG, SIGQUIT);
  const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  if (chdir("/") != 0) _exit(126);
  execv(arguments[0], arguments.data());
  _exit(127);
}

bool PostgresServer::isReady() const {
  std::ifstream state(folder_.file("data") + "/postmaster.pid");
  constexpr int lineOfState = 8;
  std::string line;
  for (int i = 0; i < lineOfState; ++i) {
    if (!std::getline(state, line)) return false;
    // What an earlier server has left behind says nothing.
    if (i == 0 && line != std::to_string(server_)) return false;
  }
  return line.starts_with("ready");
}

void PostgresServer::start() {
  std::vector<std::string> command{programs_ + "/postgres", "-D", file("data"), "-k",
                                   folder_.path().string()};
  std::vector<std::string> settings{"fsync=off", "full_page_writes=off", "shared_buffers=16MB",
                                    "max_connections=60", "autovacuum=off"};
  if (port_ == 0) {
    settings.emplace_back("listen_addresses=");
  } else {
    settings.insert(settings.end(), {"listen_addresses=localhost", "port=" + std::to_string(port_),
                                     "ssl=on", "ssl_cert_file=" + file("server.pem"),
                                     "ssl_key_file=" + file("server.key"), "log_connections=on"});
  }
  for (const std::string& setting : settings) command.insert(command.end(), {"-c", setting});
  server_ = launch(command);
  while (!isReady()) {
    if (waitpid(server_, nullptr, WNOHANG) == server_)
      throw std::runtime_error("the server has ended; see " + folder_.file("log"));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

void PostgresServer::stop(int signal) {
  if (server_ < 0) return;
  kill(server_, signal);
  waitpid(server_, nullptr, 0);
  server_ = -1;
}

void PostgresServer::crash() {
  stop(SIGQUIT);
  start();
}

std::string PostgresServer::address(const std::string& database) const {
  return address(database, "lab");
}

std::string PostgresServer::address(const std::string& database, const std::string& user) const {
  return "postgresql://" + user + "@/" + database + "?host=" + folder_.path().string() +
         (port_ == 0 ? "" : "&port=" + std::to_string(port_));
}

std::string PostgresServer::networkAddress(const std::string& database,
                                           const std::string& user) const {
  return "postgresql://" + user + "@localhost:" + std::to_string(port_) + "/" + database;
}

std::string PostgresServer::newDatabase() {
  const std::string name = "lab" + std::to_string(++databases_);
  // As files: half the work of copying by the log, where nothing waits for a disk.
  run("postgres", "CREATE DATABASE " + name + " STRATEGY FILE_COPY");
  return name;
}

void PostgresServer::run(const std::string& database, const std::string& statements) const {
  mustSucceed({programs_ + "/psql", "-X", "-q", "-v", "ON_ERROR_STOP=1", "-d", address(database),
               "-c", statements});
}

std::string PostgresServer::client(const std::string& address) {
  return "'" + folderOfPrograms() + "/psql' -XAtq -v ON_ERROR_STOP=1 -d '" + address + "'";
}

std::string PostgresServer::ask(const std::string& address, const std::string& question) {
  std::string quoted;
  for (const char c : question) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  const std::string command = client(address) + " -c '" + quoted + "'";
  FILE* answer = popen(command.c_str(), "r");
  if (answer == nullptr) throw std::runtime_error("psql cannot be run");
  std::string text;
  for (int c = std::fgetc(answer); c != EOF; c = std::fgetc(answer)) text += static_cast<char>(c);
  if (pclose(answer) != 0) throw std::runtime_error("psql has failed: " + question);
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace pelmora::test
