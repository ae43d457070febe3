// What the objects of one open database share: the connection, the change that is open, patience.
// SPDX-License-Identifier: MIT
#pragma once

#include "history/kept_change.h"

#include <pelmora/calibration/database.h>
#include <pelmora/own_tables.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration {

class Session {
 public:
  // Errors: NotFound, Unusable, Locked, Damaged.
  Session(std::string address, OpenOptions options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] const std::string& location() const { return location_; }
  [[nodiscard]] const std::string& address() const { return address_; }
  [[nodiscard]] const OpenOptions& options() const { return options_; }
  // Of the options or, if they name none, of the process.
  [[nodiscard]] std::string userName() const;
  [[nodiscard]] const ConnectionPtr& curves() const { return curves_; }
  [[nodiscard]] Connection& connection() const { return *curves_; }

  // Begins a change. Errors: Failure if one is open; Unusable, Locked.
  void begin(const std::string& command);
  void commit();
  void rollback() noexcept;
  [[nodiscard]] bool hasChange() const { return change_ != nullptr; }
  [[nodiscard]] const std::vector<HistoryEntryId>& kept() const { return kept_; }

  // What is read while it lives is of one moment. Null in a transaction, where that is so anyway.
  [[nodiscard]] std::unique_ptr<ReadView> moment() const;

  // Copies rows into the history before they are replaced; needs an open change.
  HistoryEntryId keep(const history::Scope& scope);
  void note(HistoryEntryId entry);
  [[nodiscard]] history::KeptChange& change() { return *change_; }

  // Runs `body` inside the change that is open or else in one of its own. Other errors of the
  // database become the service's, with `doing` before them: "storing the curve of ...".
  template <class Body>
  auto changing(const std::string& command, const std::string& doing, Body&& body) {
    const bool isOwn = !hasChange();
    if (isOwn) begin(command);
    try {
      if constexpr (std::is_void_v<decltype(body())>) {
        asking(doing, body);
        if (isOwn) commit();
      } else {
        auto result = asking(doing, body);
        if (isOwn) commit();
        return result;
      }
    } catch (...) {
      if (isOwn) rollback();
      throw;
    }
  }

  // Runs `body`; errors of the database become the service's.
  template <class Body>
  auto asking(const std::string& doing, Body&& body) const {
    try {
      return std::forward<Body>(body)();
    } catch (const Failure&) {
      throw;
    } catch (const Error& error) {
      throwTranslated(doing, error);
    }
  }

 private:
  [[noreturn]] void throwTranslated(const std::string& doing, const Error& error) const;

  std::string address_;   // may hold a password: for opening alone
  std::string location_;  // for people
  OpenOptions options_;
  ConnectionPtr curves_;
  std::unique_ptr<history::KeptChange> change_;
  std::vector<HistoryEntryId> kept_;
};

// What to do about an error of a database; empty if that is not known.
[[nodiscard]] std::string remedyOf(const Error& error);

// An error of the database at `location` as the failure that it means, with `doing` before it.
[[noreturn]] void throwFailure(const std::string& doing, const std::string& location,
                               const Error& error);

// "series 'Rotor A' of meter 'M1', calibration 0"
[[nodiscard]] std::string placeOf(const Meter& meter, const std::string& series);
[[nodiscard]] std::string placeOf(const Meter& meter);

// Other programs may have stored a series without a name: no operation can reach it.
[[nodiscard]] BadData namelessSeries(const Meter& meter, const std::string& location);

}  // namespace pelmora::calibration
