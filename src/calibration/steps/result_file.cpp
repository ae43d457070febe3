// SPDX-License-Identifier: MIT
#include "calibration/steps/result_file.h"

#include "base/file_text.h"
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "base/text_lines.h"
#include "base/trimmed_text.h"
#include "store/point_rows.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::calibration::steps {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t headerLines = 3;

void keepAsSaved(const fs::path& path) {
  fs::path saved = path;
  saved += ".sav";
  if (fileExists(saved)) fs::remove(saved);
  fs::rename(path, saved);
}

// The first blank parts the two numbers, and a "|" does so too; all other blanks are dropped.
void readPoint(std::string_view line, PointArray& points, std::size_t row) {
  std::string text(trimmed(line));
  if (const auto blank = text.find(' '); blank != std::string::npos) text[blank] = '|';
  std::erase(text, ' ');
  const std::vector<std::string_view> fields = split(text, "|");
  if (fields.size() < 2) throw makeError(RunTimeError::outOfRange);
  points(row, 0) = numberFromText(fields[0]);
  points(row, 1) = numberFromText(fields[1]);
}

PointArray firstPoints(const PointArray& points, std::size_t count) {
  if (count == 0) return {};
  PointArray first(count);
  for (std::size_t column = 0; column < first.columns(); ++column)
    std::ranges::copy(points.column(column).first(count), first.column(column).begin());
  return first;
}

// Errors: outOfRange, typeMismatch for a line that is not a point; `points` then holds those before
//         it.
void readPointLines(std::string_view text, PointArray& points) {
  const std::vector<std::string_view> lines = split(text, lineBreak);
  if (lines.size() <= headerLines) throw makeError(RunTimeError::outOfRange);
  const std::size_t count = lines.size() - headerLines;
  if (count > static_cast<std::size_t>(mostPoints)) throw makeError(RunTimeError::overflow);
  PointArray read(count);
  std::size_t row = 0;
  try {
    for (; row < count; ++row) readPoint(lines[row + headerLines], read, row);
  } catch (const Error&) {
    points = firstPoints(read, row);
    throw;
  }
  points = std::move(read);
}

}  // namespace

bool takeResultFile(const std::string& sResultPath, std::string& text, const Observer& observer) {
  const fs::path path = filePath(sResultPath);
  if (!fileExists(path)) {
    observer.status("Missing file to read fitted data: " + sResultPath);
    return false;
  }
  observer.status("Reading file: " + sResultPath);
  text = readWholeFile(path);
  keepAsSaved(path);
  return true;
}

void parseResultFile(std::string text, PointArray& points, const Observer& observer) {
  if (text.empty()) return;
  observer.status("Cleaning data from Tablecurve format");
  std::erase(text, '\0');
  std::string_view cleaned = trimmed(text);
  if (cleaned.ends_with(lineBreak)) cleaned.remove_suffix(lineBreak.size());
  if (cleaned.empty()) return;
  readPointLines(cleaned, points);
  observer.status("Sorting fitted data");
  sortAllPoints(points, 0, observer.sortWatch());
}

}  // namespace pelmora::calibration::steps
