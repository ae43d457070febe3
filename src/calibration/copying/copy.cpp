// SPDX-License-Identifier: MIT
#include <pelmora/calibration/copy.h>

#include "base/file_text.h"
#include "base/server_address.h"
#include "calibration/copying/added_copy.h"
#include "calibration/copying/whole_copy.h"
#include "calibration/session.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace pelmora::calibration {
namespace {

void requireTwoPlaces(const std::string& from, const std::string& to) {
  std::error_code ignored;
  const bool isSame =
      from == to || (!isServerAddress(from) && !isServerAddress(to) &&
                     std::filesystem::equivalent(filePath(from), filePath(to), ignored));
  if (!isSame) return;
  throw BadData({"'" + shownLocation(from) + "' cannot be copied into itself", shownLocation(to),
                 "name another curve database as the target"});
}

void requireConsistent(const CopyOptions& options, const std::string& to) {
  if (options.portion == 0 || (options.meters.empty() && !options.newIds)) return;
  throw BadData({"only a whole curve database with its ids can be copied in portions", to,
                 "leave the portions, or the meters and the new ids, out"});
}

Database openSource(const std::string& from, const Patience& patience) {
  return open(from, {.mode = Mode::read, .patience = patience});
}

}  // namespace

ProofSheet copyCurves(const std::string& from, const std::string& to, const CopyOptions& options,
                      const Observer& observer) {
  const std::string shown = shownLocation(to);
  requireConsistent(options, shown);
  const Database source = openSource(from, options.open.patience);
  requireTwoPlaces(from, to);
  // On a server the curve database has been made, with its roles, before.
  const bool isNew = !isServerAddress(to) && !fileExists(filePath(to));
  std::optional<Database> target(isNew ? create(to, options.open) : open(to, options.open));
  try {
    return options.meters.empty() && !options.newIds
               ? copyWhole(source, *target, options, observer)
               : copyAdded(source, *target, options, observer);
  } catch (...) {
    target.reset();
    std::error_code ignored;
    const bool isEmpty = isNew && options.portion == 0;
    if (isEmpty) std::filesystem::remove(filePath(to), ignored);
    try {
      throw;
    } catch (const Failure&) {
      throw;
    } catch (const Error& error) {
      throwFailure("copying '" + shownLocation(from) + "'", shown, error);
    }
  }
}

}  // namespace pelmora::calibration
