// An apartment for tests of operations: what the operator saw and what the host heard is kept.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/location.h"
#include "component/operation_context.h"
#include "tests/support/recording_connection.h"
#include "tests/support/scripted_connection.h"

#include <pelmora/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace pelmora::test {

struct Box {
  std::string text;
  int style;
  std::string title;
  bool operator==(const Box&) const = default;
};

inline void PrintTo(const Box& box, std::ostream* out) {
  *out << "Box{\"" << box.text << "\", " << box.style << ", \"" << box.title << "\"}";
}

// The box of an error trap.
inline Box errorBox(const std::string& operation, const std::string& description) {
  return {operation + "\r\n" + description, 16, ""};
}
inline auto errorBoxOf(const std::string& operation) {
  return testing::Field("text", &Box::text, testing::StartsWith(operation + "\r\n"));
}

class OperationTest : public testing::Test {
 protected:
  OperationTest() {
    platform().messageBox = [this](const std::string& text, int style, const std::string& title) {
      boxes.push_back({text, style, title});
      return 1;
    };
    platform().pumpMessages = [this] { events.emplace_back("pump"); };
    shared.location = splitLocation("c:\\curves\\curves.db");
  }
  ~OperationTest() override { platform() = saved_; }

  [[nodiscard]] std::vector<std::string> statusTexts() const {
    std::vector<std::string> texts;
    for (const std::string& event : events) {
      if (event != "pump") texts.push_back(event);
    }
    return texts;
  }

  SharedState shared;
  std::vector<Box> boxes;
  std::vector<std::string> events;  // status texts, and "pump" for each pump of the host's messages
  OperationContext context{shared, platform(),
                           [this](const std::string& message) { events.push_back(message); }};

 private:
  Platform saved_ = platform();
};

// With a scripted database, at the shared location and as a connection to pass. All connections
// write into one log.
class ScriptedOperationTest : public OperationTest {
 protected:
  ScriptedOperationTest() {
    platform().createConnection = [this](const std::string& location) {
      locations.push_back(location);
      return newConnection();
    };
  }

  [[nodiscard]] ConnectionPtr newConnection() {
    return std::make_shared<RecordingConnection>(std::make_shared<ScriptedConnection>(script),
                                                 log_);
  }
  // An open connection whose opening is not in the log.
  [[nodiscard]] ConnectionPtr openConnection() {
    auto connection = std::make_shared<ScriptedConnection>(script);
    connection->open();
    return std::make_shared<RecordingConnection>(connection, log_);
  }
  [[nodiscard]] const Log& log() const { return *log_; }

  std::shared_ptr<Script> script = std::make_shared<Script>();
  std::vector<std::string> locations;  // of the connections that operations made for themselves

 private:
  std::shared_ptr<Log> log_ = std::make_shared<Log>();
};

inline const Error locked{static_cast<std::int32_t>(0x80004005U), "Driver",
                          "The database is locked"};
inline const Error refused{-2147217900, "Driver", "Syntax error"};

}  // namespace pelmora::test
