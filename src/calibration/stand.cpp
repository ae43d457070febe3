// SPDX-License-Identifier: MIT
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/stand.h>
#include <pelmora/stand.h>

#include "base/run_time_error.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace pelmora::calibration {
namespace {

bool isCsvFile(const std::string& location) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(location, ignored)) return false;
  constexpr std::string_view ending = ".csv";
  if (location.size() < ending.size()) return false;
  for (std::size_t i = 0; i < ending.size(); ++i) {
    char c = location[location.size() - ending.size() + i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != ending[i]) return false;
  }
  return true;
}

}  // namespace

Stand::Stand(const std::string& location, const Patience& patience) : location_(location) {
  try {
    connection_ = openDatabase(location, patience);
    jobs_ = standJobs(connection_);
  } catch (const Error& error) {
    if (error.number() == static_cast<std::int32_t>(RunTimeError::fileNotFound)) {
      throw NotFound({error.what(), location, "name a stand's database or its CSV export"},
                     error.number());
    }
    if (isCsvFile(location)) {
      throw BadData({"the stand's data cannot be read: " + std::string(error.what()), location, ""},
                    error.number());
    }
    throw Unusable(
        {"'" + location + "' cannot be used as a stand's data: " + error.what(), location,
         "name a stand database or a CSV export with the header JobRecordID,V1..V37"},
        error.number());
  }
}

void Stand::requireJob(const std::string& job) const {
  constexpr std::size_t listedJobs = 12;
  if (std::ranges::find(jobs_, job) != jobs_.end()) return;
  std::string list;
  for (std::size_t i = 0; i < jobs_.size() && i < listedJobs; ++i)
    list += (i == 0 ? "" : ", ") + jobs_[i];
  if (jobs_.size() > listedJobs) list += " ...";
  throw NotFound({"stand '" + location_ + "' has no job " + job, location_,
                  jobs_.empty() ? "it holds no data points" : "choose among " + list});
}

}  // namespace pelmora::calibration
