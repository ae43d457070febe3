// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/keyring.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace pelmora::cli::http {
namespace {

// More browsers than anybody opens: the oldest cookie ends.
constexpr std::size_t mostCookies = 32;

}  // namespace

std::string newSecret() {
  std::array<std::uint8_t, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    throw std::system_error(errno, std::generic_category(), "the system has no random numbers");
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

bool isSameSecret(std::string_view one, std::string_view other) noexcept {
  if (one.size() != other.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    difference |= static_cast<unsigned>(static_cast<unsigned char>(one[i]) ^
                                        static_cast<unsigned char>(other[i]));
  }
  return difference == 0;
}

Keyring::Keyring() : room_(newSecret()), token_(newSecret()) {}

std::string Keyring::openingPath() const { return "/" + room_ + "/open?token=" + token_; }

std::optional<std::string> Keyring::exchange(std::string_view token) {
  if (!isSameSecret(token, token_)) return std::nullopt;
  token_ = newSecret();
  cookies_.push_back(newSecret());
  if (cookies_.size() > mostCookies) cookies_.pop_front();
  return cookies_.back();
}

bool Keyring::isCookie(std::string_view secret) const {
  return std::any_of(cookies_.begin(), cookies_.end(),
                     [&](const std::string& known) { return isSameSecret(secret, known); });
}

}  // namespace pelmora::cli::http
