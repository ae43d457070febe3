// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/workbench.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/workbench/api/bench.h"
#include "apps/pelmora/workbench/api/interface.h"
#include "apps/pelmora/workbench/browser.h"
#include "apps/pelmora/workbench/http/guard.h"
#include "apps/pelmora/workbench/http/server.h"
#include "apps/pelmora/workbench/last_use.h"
#include "apps/pelmora/workbench/page/page_files.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

namespace pelmora::cli::workbench {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::string_view interfacePath = "api/";

class WorkbenchVisitor : public http::Visitor {
 public:
  WorkbenchVisitor(Bench& bench, http::Guard& guard) : bench_(bench), guard_(guard) {}

  [[nodiscard]] const LastUse& lastUse() const { return lastUse_; }

  std::optional<http::Response> refuse(const http::Request& head) override {
    auto admitted = guard_.admit(head);
    if (auto* refused = std::get_if<http::Response>(&admitted)) return std::move(*refused);
    path_ = std::get<http::Admitted>(admitted).path;
    // Only what comes with the cookie keeps the workbench open.
    lastUse_.note(path_, Clock::now());
    return std::nullopt;
  }
  std::size_t bodyLimit(const http::Request& /*head*/) override {
    return isInterface() ? bodyLimitOf(path_.substr(interfacePath.size())) : 0;
  }
  http::Response answer(const http::Request& request) override {
    // Headers of another request may have come in between.
    auto admitted = guard_.admit(request);
    if (auto* refused = std::get_if<http::Response>(&admitted)) return std::move(*refused);
    path_ = std::get<http::Admitted>(admitted).path;
    http::Response response = isInterface()
                                  ? answerOf(bench_, path_.substr(interfacePath.size()), request)
                                  : pageAnswer(request);
    lastUse_.note(path_, Clock::now());
    return response;
  }

 private:
  [[nodiscard]] bool isInterface() const { return path_.starts_with(interfacePath); }
  [[nodiscard]] http::Response pageAnswer(const http::Request& request) const {
    const page::File* file = page::file(path_);
    if (file == nullptr) return http::refusal(404, "There is no such file.");
    if (request.method != "GET") return http::refusal(405, "A file can only be read.");
    return {200, std::string(file->type), std::string(file->text)};
  }

  Bench& bench_;
  http::Guard& guard_;
  std::string path_;
  LastUse lastUse_{Clock::now()};
};

std::unique_ptr<http::Server> serverAt(std::uint16_t port) {
  try {
    return std::make_unique<http::Server>(port);
  } catch (const std::system_error& error) {
    throw Trouble(
        ExitCode::usage,
        "port " + std::to_string(port) + " of 127.0.0.1 cannot be used: " + error.code().message(),
        "leave --port out, and a free one is taken");
  }
}

void sayWhere(const std::string& words, const http::Guard& guard) {
  printData(words + "\n  " + guard.openingAddress() + "\n");
}

}  // namespace

void runWorkbench(Session& session, const WorkbenchOptions& options) {
  Bench bench(session);
  const auto server = serverAt(options.port);
  http::Keyring keys;
  bool isOpened = false;
  http::Guard guard(keys, server->port(), [&] { isOpened = true; });
  WorkbenchVisitor visitor(bench, guard);
  sayWhere("Workbench of " + bench.location() + ", until Ctrl-C. It opens one browser at", guard);
  std::optional<BrowserFile> browser;
  if (options.opensBrowser) browser.emplace(guard.openingAddress());
  server->run(visitor, [&] {
    if (isOpened) {
      isOpened = false;
      browser.reset();
      sayWhere("Opened. For one more browser:", guard);
    }
    return !isInterrupted() && !visitor.lastUse().isIdle(Clock::now(), options.idle);
  });
  requireNotInterrupted();
  printData("Nobody has used the workbench for " +
            counted(static_cast<std::size_t>(options.idle.count()), "minute") +
            ": it has ended.\n");
}

}  // namespace pelmora::cli::workbench
