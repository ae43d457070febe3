// What the workbench's server does with connections, and when it ends by itself.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/server.h"
#include "apps/pelmora/workbench/last_use.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <deque>
#include <string>
#include <thread>

namespace pelmora::cli::http {
namespace {

using namespace std::chrono_literals;

class Echo : public Visitor {
 public:
  std::optional<Response> refuse(const Request& /*head*/) override { return std::nullopt; }
  std::size_t bodyLimit(const Request& /*head*/) override { return 8; }
  Response answer(const Request& request) override {
    return {200, "text/plain", request.method + " " + request.path + " " + request.body, {}};
  }
};

// A server that runs in a thread of its own, at a port of its own.
class RunningServer {
 public:
  explicit RunningServer(const Limits& limits = {}) : server_(0, limits) {
    thread_ = std::thread([this] { server_.run(visitor_, [this] { return !ends_.load(); }); });
  }
  ~RunningServer() {
    ends_ = true;
    thread_.join();
  }
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;
  [[nodiscard]] std::uint16_t port() const { return server_.port(); }

 private:
  Server server_;
  Echo visitor_;
  std::atomic<bool> ends_{false};
  std::thread thread_;
};

class Client {
 public:
  explicit Client(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    isConnected_ = ::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~Client() { ::close(socket_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  [[nodiscard]] bool isConnected() const { return isConnected_; }
  bool send(const std::string& text) const {
    return ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(text.size());
  }
  // Until the server ends the connection.
  [[nodiscard]] std::string everything() const {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::recv(socket_, buffer, sizeof buffer, 0)) > 0;)
      text.append(buffer, static_cast<std::size_t>(count));
    return text;
  }

 private:
  int socket_;
  bool isConnected_ = false;
};

TEST(workbench_server, answers_with_what_the_visitor_says) {
  const RunningServer server;
  const Client client(server.port());
  ASSERT_TRUE(client.isConnected());
  ASSERT_TRUE(client.send(
      "POST /a/b HTTP/1.1\r\nHost: h\r\nContent-Length: 4\r\nConnection: close\r\n\r\nbody"));
  const std::string answer = client.everything();
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 200")) << answer;
  EXPECT_TRUE(answer.ends_with("POST /a/b body")) << answer;
  EXPECT_NE(answer.find("Content-Security-Policy: default-src 'none'"), std::string::npos);
}

TEST(workbench_server, refuses_a_body_beyond_its_limit) {
  const RunningServer server;
  const Client client(server.port());
  ASSERT_TRUE(client.send(
      "POST /a HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\nConnection: close\r\n\r\nlong body"));
  EXPECT_TRUE(client.everything().starts_with("HTTP/1.1 413"));
}

TEST(workbench_server, who_says_nothing_loses_the_place_to_others) {
  const RunningServer server({.connections = 4, .silence = 1s});
  std::deque<Client> silent;
  for (int i = 0; i < 8; ++i) ASSERT_TRUE(silent.emplace_back(server.port()).isConnected());
  // Whoever finds every place taken is sent away, and comes again.
  const auto begin = std::chrono::steady_clock::now();
  for (std::string answer; !answer.starts_with("HTTP/1.1 200");) {
    ASSERT_LT(std::chrono::steady_clock::now() - begin, 5min) << answer;
    const Client client(server.port());
    (void)client.send("GET /a HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    answer = client.everything();
    if (answer.empty()) std::this_thread::sleep_for(20ms);
  }
}

// It is never silent, and its request never ends.
TEST(workbench_server, who_sends_a_byte_now_and_then_loses_the_connection) {
  const RunningServer server({.request = 1s});
  const Client client(server.port());
  ASSERT_TRUE(client.send("GET / HTTP/1.1\r\nX: "));
  const auto begin = std::chrono::steady_clock::now();
  while (client.send("y")) {
    ASSERT_LT(std::chrono::steady_clock::now() - begin, 5min) << "the connection stays";
    std::this_thread::sleep_for(20ms);
  }
}

}  // namespace
}  // namespace pelmora::cli::http

namespace pelmora::cli::workbench {
namespace {

using namespace std::chrono_literals;

TEST(workbench_last_use, a_page_that_was_left_open_keeps_nothing_open) {
  const LastUse::Time begin{};
  LastUse use(begin);
  use.note("api/series", begin + 10min);
  EXPECT_FALSE(use.isIdle(begin + 129min, 120min));
  use.note("api/revision", begin + 129min);
  EXPECT_TRUE(use.isIdle(begin + 130min, 120min));
  use.note("", begin + 131min);
  EXPECT_FALSE(use.isIdle(begin + 250min, 120min));
}

}  // namespace
}  // namespace pelmora::cli::workbench
