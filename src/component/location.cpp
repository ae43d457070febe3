// SPDX-License-Identifier: MIT
#include "component/location.h"

#include "base/run_time_error.h"
#include "base/server_address.h"
#include "component/shared_state.h"

#include <pelmora/platform.h>

namespace pelmora {

DatabaseLocation splitLocation(const std::string& path) {
  DatabaseLocation location;
  location.FullPath = path;
  if (const auto dot = path.rfind('.'); dot != std::string::npos) {
    location.Extension = path.substr(dot);
    const auto backslash = path.rfind('\\');
    const std::size_t folderLength = backslash == std::string::npos ? 0 : backslash + 1;
    location.Folder = path.substr(0, folderLength);
    location.FileName = shownLocation(path.substr(folderLength));  // is shown while it is locked
  } else if (!path.empty()) {
    location.Folder = path + "\\";
  }
  if (const auto colon = path.find(':'); colon != std::string::npos) {
    location.Drive = path.substr(0, colon + 1);
  }
  return location;
}

ConnectionPtr getConnection(std::string& location, const SharedState& shared,
                            const Platform& platform) {
  constexpr std::int32_t emptyLocation = 519;
  if (location.empty()) location = shared.location.FullPath;
  if (location.empty()) {
    throw Error(errorBase + emptyLocation, "Pelmora:getConnection", "Empty database location");
  }
  ConnectionPtr connection =
      platform.createConnection ? platform.createConnection(location) : nullptr;
  if (!connection) {
    throw Error(static_cast<std::int32_t>(RunTimeError::noObject), "Pelmora:getConnection",
                "No database driver is available for '" + shownLocation(location) + "'");
  }
  return connection;
}

}  // namespace pelmora
