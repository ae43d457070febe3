// How long an operation may wait for a locked database, and how its caller ends it early.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>

#include <chrono>
#include <functional>
#include <string>

namespace pelmora {

struct Patience {
  // A database that stays locked for longer is error 0x80004005.
  std::chrono::milliseconds limit{250};
  // Called before each pause of a wait with the time that has passed. False ends the wait. It must
  // neither throw nor use the connection.
  std::function<bool(std::chrono::milliseconds waited)> goesOn;
  // Called often while a statement reads. If it returns true, the statement ends with error
  // 0x80004004. It must neither throw nor use the connection.
  std::function<bool()> stopRequested{};
};

// As openDatabase(location), for a connection that waits with this patience: when it is opened, and
// for each of its statements. Those who have waited longest look most often, so that none of many
// waiting writers starves.
PELMORA_API ConnectionPtr openDatabase(const std::string& location, const Patience& patience);

// As createCurveDatabase(path); on a server that does not answer, Patience::stopRequested ends the
// wait with error 0x80004004, and nothing is made.
PELMORA_API void createCurveDatabase(const std::string& path, const Patience& patience);

}  // namespace pelmora
