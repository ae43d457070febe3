// SPDX-License-Identifier: MIT
#include "adapters/os/library_folder.h"
#include "band/band.h"
#include "solver/solver.h"
#include "ui/message_box.h"
#include "wiring/database_driver.h"

#include <pelmora/platform.h>

namespace pelmora {
namespace {

Platform defaultPlatform() {
  Platform platform;
  platform.messageBox = messageBoxOnStandardError;
  platform.createBandTester = createBandTester;
  platform.createFitEngine = createSolver;
  platform.componentFolder = libraryFolder();
  platform.createConnection = operationConnections();
  return platform;
}

}  // namespace

Platform& platform() {
  thread_local Platform ownPlatform = defaultPlatform();
  return ownPlatform;
}

}  // namespace pelmora
