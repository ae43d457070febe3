// An open curve database as Python holds it: one operation at a time, from any thread.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/watched.h"

#include <pelmora/calibration/database.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

namespace pelmora::python {

class Laboratory {
 public:
  struct Settings {
    std::string location;
    calibration::Mode mode = calibration::Mode::write;
    std::chrono::milliseconds wait{};
    std::string userName;
    bool isNew = false;  // the database is created
  };

  explicit Laboratory(const Settings& settings);

  [[nodiscard]] const std::string& location() const { return location_; }
  [[nodiscard]] bool isOpen() const { return isOpen_; }
  void close();

  // body(Database&, const Observer&) runs beside the interpreter, after the operations that other
  // threads have begun. Its result must not hold anything of Python.
  template <class Body>
  auto use(const Callbacks& callbacks, Body&& body) {
    using Result = std::invoke_result_t<Body, calibration::Database&, const calibration::Observer&>;
    requireOutside();
    const std::thread::id caller = std::this_thread::get_id();
    if constexpr (std::is_void_v<Result>) {
      watched(callbacks, [&](const calibration::Observer& observer) {
        const Claim claim(*this, caller, observer.stop);
        body(database(), observer);
      });
    } else {
      std::optional<Result> result;
      watched(callbacks, [&](const calibration::Observer& observer) {
        const Claim claim(*this, caller, observer.stop);
        result = body(database(), observer);
      });
      return std::move(*result);
    }
  }
  template <class Body>
  auto use(Body&& body) {
    return use({}, [&body](calibration::Database& lab, const calibration::Observer&) {
      return body(lab);
    });
  }
  // The same for an operation that changes the database. Errors: Unusable if it is open for
  // reading.
  template <class Body>
  auto change(const Callbacks& callbacks, Body&& body) {
    requireWritable();
    return use(callbacks, std::forward<Body>(body));
  }
  template <class Body>
  auto change(Body&& body) {
    requireWritable();
    return use(std::forward<Body>(body));
  }

 private:
  // The right to use the database. Errors: Cancelled if a stop is requested before it is free.
  class Claim {
   public:
    Claim(Laboratory& laboratory, std::thread::id caller, const std::stop_token& stop);
    ~Claim();
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

   private:
    Laboratory& laboratory_;
    std::unique_lock<std::timed_mutex> lock_;
  };

  // Read by the connections while they wait for a lock or a server, and while they read.
  struct Stop {
    std::stop_token token;
  };

  // Errors: Failure for a callback that uses the database whose operation has called it.
  void requireOutside() const;
  void requireWritable() const;
  // Errors: Failure if it is closed.
  calibration::Database& database();

  std::string location_;
  bool isWritable_ = false;
  std::shared_ptr<Stop> stop_ = std::make_shared<Stop>();
  std::timed_mutex mutex_;
  std::atomic<std::thread::id> caller_{};
  std::atomic<bool> isOpen_ = false;
  std::optional<calibration::Database> database_;
};

}  // namespace pelmora::python
