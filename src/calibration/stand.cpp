// SPDX-License-Identifier: MIT
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/stand.h>
#include <pelmora/stand.h>

#include "base/file_text.h"
#include "base/run_time_error.h"
#include "base/text_case.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace pelmora::calibration {
namespace {

bool isEmptyFile(const std::string& location) {
  std::error_code ignored;
  return std::filesystem::file_size(filePath(location), ignored) == 0;
}

bool endsLikeText(const std::string& location) {
  return std::ranges::any_of(std::array{".csv", ".txt", ".tsv"}, [&](std::string_view ending) {
    return location.size() >= ending.size() &&
           equalNames(std::string_view(location).substr(location.size() - ending.size()), ending);
  });
}

}  // namespace

UnreadableText::UnreadableText(const std::string& location, const sheets::SheetError& error)
    : BadData({"the stand's data cannot be read: " + error.place() + ": " + error.problem(),
               location, error.remedy()},
              error.number()),
      doubt_(error.doubt()) {}

UnreadableText::~UnreadableText() = default;

Stand::Stand(const std::string& location, const Patience& patience, const sheets::Style& style)
    : location_(location) {
  try {
    sheets::Style read = style;
    if (!read.stopRequested) read.stopRequested = patience.stopRequested;
    opened_ = openStand(location, patience, read);
    jobs_ = standJobs(opened_.connection);
  } catch (const sheets::SheetError& error) {
    throw UnreadableText(location, error);
  } catch (const Error& error) {
    if (error.number() == operationStopped)
      throw Cancelled({"reading '" + location + "' was cancelled", location, ""}, error.number());
    if (error.number() == static_cast<std::int32_t>(RunTimeError::fileNotFound)) {
      throw NotFound({error.what(), location, "name a stand's database or its export as text"},
                     error.number());
    }
    const bool isText = isRegularFile(location) && endsLikeText(location);
    if (isText && !isEmptyFile(location) &&
        error.number() == static_cast<std::int32_t>(RunTimeError::invalidFileFormat)) {
      throw BadData({"the stand's data cannot be read: no line at the start of '" + location +
                         "' names the column JobRecordID",
                     location, "add a header with JobRecordID, V1 to V5 and V12"},
                    error.number());
    }
    if (isText) {
      throw BadData({"the stand's data cannot be read: " + std::string(error.what()), location, ""},
                    error.number());
    }
    throw Unusable(
        {"'" + location + "' cannot be used as a stand's data: " + error.what(), location,
         "name a stand database or a text file with the columns JobRecordID, V1 to V37"},
        error.number());
  }
}

std::size_t Stand::lineOf(const std::string& job, std::size_t point) const {
  const auto found = opened_.lines.find(job);
  return found == opened_.lines.end() || point >= found->second.size() ? 0 : found->second[point];
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
