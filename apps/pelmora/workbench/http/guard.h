// Who may ask the workbench for what. Decided before a body is read.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/workbench/http/keyring.h"
#include "apps/pelmora/workbench/http/message.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace pelmora::cli::http {

// What a request that may pass asks for: the path inside the room, "" for the page.
struct Admitted {
  std::string path;
};

// Refuses, in this order, a request
// - to another host than 127.0.0.1:PORT, word for word: a name that an attacker's server resolves
//   to this machine is another host;
// - by another method than GET and POST;
// - to a path outside the room;
// - from a page of another origin (Sec-Fetch-Site, Origin), and into a frame;
// - without the cookie, but for the exchange of the token;
// - by POST without a browser's or a script's word that it comes from here, or with a form's type.
class Guard {
 public:
  // opened: called when a token was exchanged.
  Guard(Keyring& keys, std::uint16_t port, std::function<void()> opened = {});

  [[nodiscard]] const std::string& origin() const { return origin_; }
  [[nodiscard]] std::string openingAddress() const { return origin_ + keys_.openingPath(); }

  // The path to answer for, or what to answer instead.
  [[nodiscard]] std::variant<Admitted, Response> admit(const Request& request);

 private:
  [[nodiscard]] std::optional<Response> strangerRefusal(const Request& request,
                                                        const std::string& path) const;
  [[nodiscard]] std::optional<Response> changeRefusal(const Request& request) const;
  [[nodiscard]] bool hasCookie(const Request& request) const;
  [[nodiscard]] Response open(const Request& request);

  Keyring& keys_;
  std::string host_, origin_, cookieName_;
  std::function<void()> opened_;
};

}  // namespace pelmora::cli::http
