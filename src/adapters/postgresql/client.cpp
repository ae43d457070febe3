// SPDX-License-Identifier: MIT
#include "adapters/postgresql/client.h"

#include "adapters/os/library_folder.h"
#include "adapters/postgresql/cell_text.h"
#include "base/run_time_error.h"

#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <system_error>
#include <thread>
#include <utility>

namespace pelmora::postgres {

namespace {

constexpr const char* moduleName = "libpelmora-postgresql.so";
constexpr std::chrono::milliseconds betweenQuestions{20};

std::atomic<std::size_t>& requests() {
  static std::atomic<std::size_t> count{0};
  return count;
}

Error noModule(const std::string& why) {
  return {static_cast<std::int32_t>(RunTimeError::noEngine), "Pelmora",
          "PostgreSQL databases cannot be opened here: " + why +
              ". Install the package with Pelmora's module for PostgreSQL and libpqxx."};
}

// Beside the library that this code is in (build folder), or in the folder that is installed with
// it. No search path counts, so that no other file can take its place.
std::string modulePath() {
  const std::filesystem::path folder = libraryFolder();
  std::error_code ignored;
  for (const auto& place : {folder, folder / "pelmora"}) {
    if (folder.is_absolute() && std::filesystem::exists(place / moduleName, ignored))
      return (place / moduleName).string();
  }
  throw noModule("the module " + std::string(moduleName) + " is not installed");
}

// Never unloaded: connections may outlive whoever asked for them.
OpenLink loadModule() {
  const std::string path = modulePath();
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const function = module == nullptr ? nullptr : dlsym(module, openLinkName);
  if (function == nullptr) {
    const char* why = dlerror();
    throw noModule(why == nullptr ? path + " is not usable" : why);
  }
  return reinterpret_cast<OpenLink>(function);
}

OpenLink openLink() {
  static const OpenLink function = loadModule();
  return function;
}

void check(const ServerLink::Outcome& outcome) {
  if (outcome) throw ServerError(*outcome);
}

// Rows as record sets keep them.
class StoredRows : public RowSink {
 public:
  void addColumn(std::string_view name, std::uint32_t type) override {
    delivered_.fields.emplace_back(name);
    readers_.emplace_back(type);
    delivered_.rows = sql::RowStore(readers_.size());
  }
  void addCell(std::optional<std::string_view> text) override {
    if (text) {
      readers_[column_].append(*text, delivered_.rows);
    } else {
      delivered_.rows.append(std::monostate());
    }
    ++column_;
  }
  void endRow() override {
    delivered_.rows.endRow();
    column_ = 0;
  }
  [[nodiscard]] ServerRows take() { return std::move(delivered_); }

 private:
  std::vector<CellReader> readers_;
  std::size_t column_ = 0;
  ServerRows delivered_;
};

struct Attempt {
  ServerLink::Outcome outcome;
  std::unique_ptr<ServerLink> link;
};

// The client library resolves names, asks one server after the other and waits for each without a
// break. At a stop it goes on in a thread that nobody waits for, until the server answers or the
// time to connect is over.
std::unique_ptr<ServerLink> linkTo(const std::string& address,
                                   const std::function<bool()>& stopRequested) {
  const OpenLink open = openLink();
  Attempt attempt;
  if (stopRequested) {
    std::promise<Attempt> promise;
    std::future<Attempt> answer = promise.get_future();
    std::thread([open, address, promise = std::move(promise)]() mutable {
      Attempt made;
      made.outcome = open(address, made.link);
      promise.set_value(std::move(made));
    }).detach();
    while (answer.wait_for(betweenQuestions) != std::future_status::ready) {
      if (stopRequested()) throw ServerError({stoppedState, "", false});
    }
    attempt = answer.get();
  } else {
    attempt.outcome = open(address, attempt.link);
  }
  check(attempt.outcome);
  return std::move(attempt.link);
}

}  // namespace

Client::Client(const std::string& address, const std::function<bool()>& stopRequested)
    : link_(linkTo(address, stopRequested)) {}

ServerRows Client::run(const std::string& statements) {
  ++requests();
  StoredRows rows;
  check(link_->run(statements, rows));
  return rows.take();
}

// The client library waits for the server without a break, so that it waits in a thread of its own.
ServerRows Client::run(const std::string& statements, const std::function<bool()>& stopRequested) {
  if (!stopRequested) return run(statements);
  auto running = std::async(std::launch::async, [&] { return run(statements); });
  bool isStopped = false;
  while (running.wait_for(betweenQuestions) != std::future_status::ready) {
    if (!isStopped && stopRequested()) {
      isStopped = true;
      link_->cancel();
    }
  }
  try {
    return running.get();
  } catch (const ServerError& error) {
    if (!isStopped || error.isConnectionLost()) throw;
    throw ServerError({stoppedState, error.what(), false});
  }
}

void Client::copy(const std::string& table, const std::vector<std::string>& quotedColumns,
                  const std::function<bool(std::string&)>& nextLine) {
  ++requests();
  check(link_->copy(table, quotedColumns, nextLine));
}

std::size_t requestsSent() noexcept { return requests(); }

}  // namespace pelmora::postgres
