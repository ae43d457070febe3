// Who may ask the workbench for what.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/http/guard.h"
#include "apps/pelmora/workbench/http/policy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelmora::cli::http {
namespace {

using testing::HasSubstr;

class WorkbenchGuard : public testing::Test {
 protected:
  [[nodiscard]] Request get(const std::string& inside, const Fields& more = {}) const {
    Request request{.method = "GET",
                    .path = "/" + keys_.room() + "/" + inside,
                    .query = {},
                    .headers = {{"host", "127.0.0.1:4711"}},
                    .body = {}};
    request.headers.insert(request.headers.end(), more.begin(), more.end());
    return request;
  }
  [[nodiscard]] Request post(const Fields& more) const {
    Request request = get("api/store", more);
    request.method = "POST";
    return request;
  }
  Response opened(const std::string& token) {
    Request request = get("open");
    request.query = {{"token", token}};
    return std::get<Response>(guard_.admit(request));
  }
  [[nodiscard]] std::string token() const {
    const std::string path = keys_.openingPath();
    return path.substr(path.find('=') + 1);
  }
  // "pelmora-4711=SECRET" of a new session.
  std::string newCookie() {
    const std::string line = opened(token()).headers.at(0).second;
    return line.substr(0, line.find(';'));
  }
  int statusOf(const Request& request) {
    const auto answer = guard_.admit(request);
    return std::holds_alternative<Admitted>(answer) ? 200 : std::get<Response>(answer).status;
  }

  Keyring keys_;
  int openings_ = 0;
  Guard guard_{keys_, 4711, [this] { ++openings_; }};
};

TEST_F(WorkbenchGuard, a_token_opens_once) {
  const std::string first = token();
  const Response answer = opened(first);
  EXPECT_EQ(answer.status, 200);
  ASSERT_EQ(answer.headers.size(), 1U);
  EXPECT_EQ(answer.headers[0].first, "Set-Cookie");
  EXPECT_THAT(answer.headers[0].second,
              HasSubstr("; Path=/" + keys_.room() + "/; HttpOnly; SameSite=Strict"));
  EXPECT_EQ(opened(first).status, 403);
  EXPECT_EQ(openings_, 1);
  EXPECT_NE(token(), first);
}

TEST_F(WorkbenchGuard, a_wrong_token_opens_nothing_and_uses_up_none) {
  const std::string right = token();
  EXPECT_EQ(opened(std::string(32, '0')).status, 403);
  EXPECT_EQ(opened("").status, 403);
  EXPECT_EQ(opened(right).status, 200);
}

TEST_F(WorkbenchGuard, the_cookie_opens_the_page_and_another_one_does_not) {
  const std::string cookie = newCookie();
  EXPECT_EQ(statusOf(get("", {{"cookie", cookie}})), 200);
  EXPECT_EQ(statusOf(get("", {{"cookie", "a=b; " + cookie + "; c=d"}})), 200);
  EXPECT_EQ(statusOf(get("")), 401);
  EXPECT_EQ(statusOf(get("", {{"cookie", cookie + "0"}})), 401);
  EXPECT_EQ(statusOf(get("", {{"cookie", "x" + cookie}})), 401);
  EXPECT_EQ(statusOf(get("", {{"cookie", "pelmora-4711="}})), 401);
}

TEST_F(WorkbenchGuard, a_host_by_any_other_name_gets_nothing) {
  const std::string cookie = newCookie();
  for (const char* host : {"localhost:4711", "127.0.0.1", "127.0.0.1:4712", "attacker.example:4711",
                           "127.0.0.1:4711.attacker.example", "[::1]:4711", "0.0.0.0:4711", ""}) {
    Request request = get("", {{"cookie", cookie}});
    request.headers[0].second = host;
    EXPECT_EQ(statusOf(request), 421) << host;
  }
  Request none = get("", {{"cookie", cookie}});
  none.headers.erase(none.headers.begin());
  EXPECT_EQ(statusOf(none), 421);
  EXPECT_EQ(statusOf(get("", {{"cookie", cookie}, {"host", "127.0.0.1:4711"}})), 400);
}

TEST_F(WorkbenchGuard, a_page_of_another_origin_gets_nothing_even_with_the_cookie) {
  const std::string cookie = newCookie();
  for (const char* site : {"cross-site", "same-site", "anything"})
    EXPECT_EQ(statusOf(get("api/meters", {{"cookie", cookie}, {"sec-fetch-site", site}})), 403);
  for (const char* origin : {"http://attacker.example", "null", "http://127.0.0.1:4712",
                             "https://127.0.0.1:4711", "http://localhost:4711"})
    EXPECT_EQ(statusOf(get("api/meters", {{"cookie", cookie}, {"origin", origin}})), 403);
  EXPECT_EQ(statusOf(get("api/meters", {{"cookie", cookie}, {"sec-fetch-site", "same-origin"}})),
            200);
}

TEST_F(WorkbenchGuard, a_frame_gets_nothing) {
  const std::string cookie = newCookie();
  for (const char* frame : {"iframe", "frame", "object", "embed"}) {
    EXPECT_EQ(statusOf(get("", {{"cookie", cookie},
                                {"sec-fetch-site", "same-origin"},
                                {"sec-fetch-dest", frame}})),
              403);
  }
}

TEST_F(WorkbenchGuard, a_change_needs_to_say_whence_it_comes) {
  const std::string cookie = newCookie();
  const std::pair<std::string, std::string> json{"content-type", "application/json"};
  EXPECT_EQ(statusOf(post({{"cookie", cookie}, json})), 403);
  EXPECT_EQ(statusOf(post({{"cookie", cookie}, json, {"sec-fetch-site", "none"}})), 403);
  EXPECT_EQ(statusOf(post({{"cookie", cookie}, json, {"sec-fetch-site", "same-origin"}})), 200);
  EXPECT_EQ(statusOf(post({{"cookie", cookie}, json, {"origin", "http://127.0.0.1:4711"}})), 200);
  EXPECT_EQ(statusOf(post({json, {"origin", "http://127.0.0.1:4711"}})), 401);
  EXPECT_EQ(statusOf(post({{"cookie", cookie},
                           json,
                           {"sec-fetch-site", "same-origin"},
                           {"origin", "http://attacker.example"}})),
            403);
}

TEST_F(WorkbenchGuard, a_form_changes_nothing) {
  const std::string cookie = newCookie();
  for (const char* type : {"application/x-www-form-urlencoded", "multipart/form-data; boundary=x",
                           "text/plain", "text/plain; application/json", ""}) {
    EXPECT_EQ(
        statusOf(post(
            {{"cookie", cookie}, {"origin", "http://127.0.0.1:4711"}, {"content-type", type}})),
        415)
        << type;
  }
}

TEST_F(WorkbenchGuard, other_methods_and_places_get_nothing) {
  const std::string cookie = newCookie();
  for (const char* method : {"PUT", "DELETE", "OPTIONS", "HEAD", "TRACE", "get"}) {
    Request request = get("", {{"cookie", cookie}});
    request.method = method;
    EXPECT_EQ(statusOf(request), 405) << method;
  }
  for (const std::string& path :
       {std::string("/"), std::string("/open"), "/" + keys_.room(), "/" + keys_.room() + "x/",
        "/" + std::string(32, '0') + "/", "//" + keys_.room() + "/", std::string()}) {
    Request request = get("", {{"cookie", cookie}});
    request.path = path;
    EXPECT_EQ(statusOf(request), 404) << path;
  }
}

TEST_F(WorkbenchGuard, every_answer_forbids_frames_inline_scripts_and_copies) {
  std::string policy;
  Fields headers = secured({200, "text/html", "x"}).headers;
  EXPECT_EQ(onlyValue(headers, "X-Frame-Options"), "DENY");
  EXPECT_EQ(onlyValue(headers, "Cache-Control"), "no-store");
  EXPECT_EQ(onlyValue(headers, "X-Content-Type-Options"), "nosniff");
  policy = onlyValue(headers, "Content-Security-Policy").value_or("");
  EXPECT_THAT(policy, HasSubstr("default-src 'none'"));
  EXPECT_THAT(policy, HasSubstr("frame-ancestors 'none'"));
  EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
}

TEST(workbench_keyring, secrets_differ) {
  EXPECT_EQ(newSecret().size(), 32U);
  EXPECT_NE(newSecret(), newSecret());
  EXPECT_TRUE(isSameSecret("abc", "abc"));
  EXPECT_FALSE(isSameSecret("abc", "abd"));
  EXPECT_FALSE(isSameSecret("abc", "abcd"));
}

TEST(workbench_keyring, the_oldest_of_many_browsers_is_shut_out) {
  Keyring keys;
  const auto next = [&] {
    const std::string path = keys.openingPath();
    return keys.exchange(path.substr(path.find('=') + 1)).value();
  };
  const std::string first = next();
  EXPECT_TRUE(keys.isCookie(first));
  std::string last;
  for (int i = 0; i < 32; ++i) last = next();
  EXPECT_FALSE(keys.isCookie(first));
  EXPECT_TRUE(keys.isCookie(last));
}

}  // namespace
}  // namespace pelmora::cli::http
