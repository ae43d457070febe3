// A web server for one person at 127.0.0.1. One thread: requests are answered one after the other.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/http/message.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace pelmora::cli::http {

// What may be asked of the server at once. Whoever goes beyond loses the connection or gets 413.
struct Limits {
  std::size_t headerBytes = 32768;  // of a request line and its headers
  unsigned connections = 64;
  std::chrono::seconds silence{15};  // without a byte
  std::chrono::seconds request{60};  // from its first byte to its last
  std::chrono::seconds farewell{2};  // for the answers that are ready when the server ends
};

class Visitor {
 public:
  virtual ~Visitor() = default;
  // Called once the headers are there. An answer here is the answer to the request: its body is
  // read, because a browser may ignore an answer that comes before, and discarded.
  [[nodiscard]] virtual std::optional<Response> refuse(const Request& head) = 0;
  // The largest body that this request may have.
  [[nodiscard]] virtual std::size_t bodyLimit(const Request& head) = 0;
  // Called with the whole body. What it throws becomes status 500; the answer does not say why.
  [[nodiscard]] virtual Response answer(const Request& request) = 0;
};

class Server {
 public:
  // Listens at 127.0.0.1 and nowhere else. port 0: a free one that the system chooses.
  //
  // Errors: std::system_error if the port is taken or must not be used.
  explicit Server(std::uint16_t port, const Limits& limits = {});
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] std::uint16_t port() const;
  // Answers until `goesOn` is false, which is asked several times a second; the answers that are
  // ready by then are still sent.
  void run(Visitor& visitor, const std::function<bool()>& goesOn);

 private:
  class Daemon;
  std::unique_ptr<Daemon> daemon_;
};

}  // namespace pelmora::cli::http
