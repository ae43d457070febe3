// SPDX-License-Identifier: MIT
#include "adapters/os/library_folder.h"
#include "ui/message_box.h"
#include "wiring/database_driver.h"

#include <pelmora/platform.h>

#if defined(PELMORA_HAS_SOLVER)
#include "solver/solver.h"
#endif
#if defined(PELMORA_HAS_BAND)
#include "band/band.h"
#endif

namespace pelmora {
namespace {

Platform defaultPlatform() {
  Platform platform;
  platform.messageBox = messageBoxOnStandardError;
#if defined(PELMORA_HAS_BAND)
  platform.createBandTester = createBandTester;
#endif
#if defined(PELMORA_HAS_SOLVER)
  platform.createFitEngine = createSolver;
#endif
  platform.componentFolder = libraryFolder();
  platform.createConnection = databaseConnection;
  return platform;
}

}  // namespace

Platform& platform() {
  thread_local Platform ownPlatform = defaultPlatform();
  return ownPlatform;
}

}  // namespace pelmora
