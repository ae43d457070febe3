// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/guard.h"

#include <array>
#include <string_view>
#include <utility>

namespace pelmora::cli::http {
namespace {

constexpr const char* openingPathInside = "open";

// The page follows a link of its own to the workbench, because a browser does not send a strict
// cookie when a program or a file has sent it here.
constexpr const char* openedPage =
    "<!doctype html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"refresh\" content=\"0;url=./\">\n<link rel=\"icon\" href=\"icon.svg\">\n"
    "<title>Pelmora workbench</title>\n"
    "<p><a href=\"./\">Open the workbench</a></p>\n</html>\n";

constexpr const char* howToOpen =
    "open the address that 'pelmora workbench' printed last in its terminal; each address opens "
    "one browser";

// Whether a browser says that the answer goes into a frame or an embedded object.
bool isFramed(const Request& request) {
  const auto destination = onlyValue(request.headers, "sec-fetch-dest");
  if (!destination) return false;
  static constexpr std::array<std::string_view, 5> frames{"iframe", "frame", "object", "embed",
                                                          "fencedframe"};
  for (const std::string_view frame : frames) {
    if (*destination == frame) return true;
  }
  return false;
}

bool isRepeated(const Request& request) {
  for (const char* name : {"host", "origin", "sec-fetch-site", "content-type", "content-length"}) {
    if (countOf(request.headers, name) > 1) return true;
  }
  return false;
}

// "application/json; charset=utf-8" -> "application/json"
std::string mediaType(const Request& request) {
  const std::string type = onlyValue(request.headers, "content-type").value_or("");
  std::string name = type.substr(0, type.find(';'));
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return name;
}

}  // namespace

Guard::Guard(Keyring& keys, std::uint16_t port, std::function<void()> opened)
    : keys_(keys),
      host_("127.0.0.1:" + std::to_string(port)),
      origin_("http://" + host_),
      cookieName_("pelmora-" + std::to_string(port)),
      opened_(std::move(opened)) {}

std::variant<Admitted, Response> Guard::admit(const Request& request) {
  if (isRepeated(request)) return refusal(400, "A header that may occur once occurs twice.");
  if (onlyValue(request.headers, "host") != host_)
    return refusal(421, "This server answers for " + host_ + " and no other name.");
  if (request.method != "GET" && request.method != "POST")
    return Response{405,
                    "text/plain; charset=utf-8",
                    "Only GET and POST are answered.\n",
                    {{"Allow", "GET, POST"}}};
  const std::string_view room = keys_.room();
  const std::string_view path = request.path;
  if (path.size() < room.size() + 2 || path[0] != '/' || path[room.size() + 1] != '/' ||
      !isSameSecret(path.substr(1, room.size()), room))
    return refusal(404, "There is nothing here: " + std::string(howToOpen) + ".");
  std::string inside(path.substr(room.size() + 2));
  if (auto refused = strangerRefusal(request, inside)) return *std::move(refused);
  if (inside == openingPathInside) return open(request);
  if (!hasCookie(request))
    return refusal(401,
                   "This browser has not opened the workbench: " + std::string(howToOpen) + ".");
  if (request.method == "POST") {
    if (auto refused = changeRefusal(request)) return *std::move(refused);
  }
  return Admitted{std::move(inside)};
}

std::optional<Response> Guard::strangerRefusal(const Request& request,
                                               const std::string& path) const {
  if (isFramed(request)) return refusal(403, "The workbench does not open in a frame.");
  const auto origin = onlyValue(request.headers, "origin");
  if (origin && *origin != origin_)
    return refusal(403, "A page of another origin must not ask for this.");
  // "none": a person typed the address or a program opened it. The exchange is protected by its
  // token: the file that hands it to the browser is of another origin.
  const auto site = onlyValue(request.headers, "sec-fetch-site");
  const bool isOwn =
      !site || *site == "same-origin" || (*site == "none" && request.method == "GET");
  if (!isOwn && path != openingPathInside)
    return refusal(403, "A page of another origin must not ask for this.");
  return std::nullopt;
}

std::optional<Response> Guard::changeRefusal(const Request& request) const {
  const bool saysWhence = onlyValue(request.headers, "sec-fetch-site") == "same-origin" ||
                          onlyValue(request.headers, "origin") == origin_;
  if (!saysWhence) return refusal(403, "A change needs the header Origin: " + origin_ + ".");
  const std::string type = mediaType(request);
  if (type != "application/json" && type != "application/octet-stream")
    return refusal(415, "Send application/json, or application/octet-stream for a file.");
  return std::nullopt;
}

bool Guard::hasCookie(const Request& request) const {
  for (const auto& [name, value] : request.headers) {
    if (name != "cookie") continue;
    for (std::string_view rest = value; !rest.empty();) {
      const auto end = rest.find(';');
      std::string_view pair = rest.substr(0, end);
      rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
      while (!pair.empty() && pair.front() == ' ') pair.remove_prefix(1);
      const auto equals = pair.find('=');
      if (equals != std::string_view::npos && pair.substr(0, equals) == cookieName_ &&
          keys_.isCookie(pair.substr(equals + 1)))
        return true;
    }
  }
  return false;
}

Response Guard::open(const Request& request) {
  const auto token = onlyValue(request.query, "token");
  const auto secret = request.method == "GET" && token ? keys_.exchange(*token) : std::nullopt;
  if (!secret) {
    // Whoever has the cookie already, and goes back to the address, sees the workbench.
    if (hasCookie(request)) return {200, "text/html; charset=utf-8", openedPage};
    return refusal(403,
                   "This address was used already or is wrong: " + std::string(howToOpen) + ".");
  }
  if (opened_) opened_();
  return {200,
          "text/html; charset=utf-8",
          openedPage,
          {{"Set-Cookie", cookieName_ + "=" + *secret + "; Path=/" + keys_.room() +
                              "/; HttpOnly; SameSite=Strict"}}};
}

}  // namespace pelmora::cli::http
