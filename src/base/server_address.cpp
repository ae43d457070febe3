// SPDX-License-Identifier: MIT
#include "base/server_address.h"

#include "base/ascii_character.h"
#include "base/file_text.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace pelmora {

namespace {

constexpr std::string_view hiddenPassword = "***";

int hexDigit(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "%20" and its kin as the characters that they stand for.
std::string decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 &&
                          hexDigit(text[i + 2]) >= 0;
    if (isEscape) {
      result += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

struct Piece {
  std::size_t begin = 0, size = 0;
};

// The places of the passwords, from left to right: after the user's name, and as parameters.
std::vector<Piece> passwordsIn(std::string_view location) {
  std::vector<Piece> pieces;
  if (!isServerAddress(location)) return pieces;
  const std::size_t begin = location.find("://") + 3;
  const std::size_t end = std::min(location.find_first_of("/?", begin), location.size());
  const std::size_t at = location.substr(0, end).rfind('@');
  const std::size_t colon = location.find(':', begin);
  if (at != std::string_view::npos && at >= begin && colon < at)
    pieces.push_back({colon + 1, at - colon - 1});
  std::size_t next = location.find('?', begin);
  for (; next != std::string_view::npos; next = location.find('&', next)) {
    ++next;
    const std::size_t sign = std::min(location.find('=', next), location.size() - 1);
    const std::string name = decoded(location.substr(next, sign - next));
    if (name != "password" && name != "sslpassword") continue;
    const std::size_t value = sign + 1;
    pieces.push_back({value, std::min(location.find('&', value), location.size()) - value});
  }
  return pieces;
}

void hide(std::string& text, std::string_view secret) {
  if (secret.empty()) return;
  for (std::size_t at = text.find(secret); at != std::string::npos;
       at = text.find(secret, at + hiddenPassword.size()))
    text.replace(at, secret.size(), hiddenPassword);
}

}  // namespace

bool isServerAddress(std::string_view location) {
  return location.starts_with("postgresql://") || location.starts_with("postgres://");
}

bool hasPassword(std::string_view location) { return !passwordsIn(location).empty(); }

std::string shownLocation(std::string_view location) {
  std::string shown(location);
  const std::vector<Piece> pieces = passwordsIn(location);
  for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
    shown.replace(piece->begin, piece->size, hiddenPassword);
  return shown;
}

std::string shortLocation(const std::string& location) {
  if (!isServerAddress(location)) return utf8Text(filePath(location).filename());
  const std::string shown = shownLocation(location);
  return shown.substr(0, shown.find('?'));
}

std::string withoutPassword(std::string text, std::string_view location) {
  for (const Piece& piece : passwordsIn(location)) {
    const std::string_view password = location.substr(piece.begin, piece.size);
    hide(text, password);
    hide(text, decoded(password));
  }
  return text;
}

}  // namespace pelmora
