// Requests and answers of the workbench, as values that know no web server.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::cli::http {

using Fields = std::vector<std::pair<std::string, std::string>>;

// How often a field occurs, and its value if that is once.
[[nodiscard]] std::size_t countOf(const Fields& fields, std::string_view name);
[[nodiscard]] std::optional<std::string> onlyValue(const Fields& fields, std::string_view name);

struct Request {
  std::string method;
  std::string path;  // from the first slash, without the query
  Fields query;      // decoded
  Fields headers;    // names in small letters
  std::string body;
};

struct Response {
  int status = 200;
  std::string type;  // of the body: "application/json"
  std::string body;
  Fields headers{};  // more of them
};

// A refusal for a person to read: plain text, one sentence and what to do.
[[nodiscard]] Response refusal(int status, const std::string& text);

}  // namespace pelmora::cli::http
