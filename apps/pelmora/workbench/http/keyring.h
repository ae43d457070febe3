// What opens the workbench: a secret path, a token for one use, and the cookies that it was
// exchanged for.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace pelmora::cli::http {

// Everything lies below a path that is new with every start. Browsers send a cookie to every port
// of a machine, but only below its path: what else listens on this machine never gets ours.
//
//   /ROOM/open?token=TOKEN   exchanges the token for a cookie, once
//   /ROOM/                   the page, for browsers with the cookie
class Keyring {
 public:
  Keyring();

  [[nodiscard]] const std::string& room() const { return room_; }
  // Path and query that open the workbench, once.
  [[nodiscard]] std::string openingPath() const;

  // The secret of a new cookie if this is the token; then the token is used up and openingPath()
  // has another one.
  [[nodiscard]] std::optional<std::string> exchange(std::string_view token);
  [[nodiscard]] bool isCookie(std::string_view secret) const;

 private:
  std::string room_, token_;
  std::deque<std::string> cookies_;
};

// 128 bits from the system's generator, as 32 hexadecimal digits. Errors: std::system_error.
[[nodiscard]] std::string newSecret();
// Takes the same time wherever two texts of one length differ.
[[nodiscard]] bool isSameSecret(std::string_view one, std::string_view other) noexcept;

}  // namespace pelmora::cli::http
