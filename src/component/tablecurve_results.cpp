// SPDX-License-Identifier: MIT
#include "component/tablecurve_results.h"

#include "base/file_text.h"
#include "base/number_text.h"
#include "base/text_lines.h"
#include "store/point_rows.h"
#include "component/lookups.h"
#include "component/operation_connection.h"
#include "store/reading.h"
#include "ui/message_box.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

namespace pelmora {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t headerLines = 3;

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

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
void readPoints(std::string_view text, PointArray& points) {
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

PointArray readTCresults(const OperationContext& context, const std::string& sResultPath,
                         bool& ArrayIsEmpty) {
  PointArray points;
  ArrayIsEmpty = true;
  context.trap("Error in RawData:readTCresults", [&] {
    const fs::path path = filePath(sResultPath);
    if (!fileExists(path)) {
      context.raiseStatusUpdate("Missing file to read fitted data: " + sResultPath);
      standardMessageBox("File not found", box_style::information, "");
      return;
    }
    context.raiseStatusUpdate("Reading file: " + sResultPath);
    std::string text = readWholeFile(path);
    keepAsSaved(path);
    if (text.empty()) return;
    context.raiseStatusUpdate("Cleaning data from Tablecurve format");
    std::erase(text, '\0');
    std::string_view cleaned = trimmed(text);
    if (cleaned.ends_with(lineBreak)) cleaned.remove_suffix(lineBreak.size());
    if (cleaned.empty()) return;
    readPoints(cleaned, points);
    context.raiseStatusUpdate("Sorting fitted data");
    quickSortPoints(points, 0, 1, 0, pointUpperBound(points), true);
  });
  ArrayIsEmpty = points.empty();
  return points;
}

PointArray ImportCurvedData(const OperationContext& context, const std::string& sFilepath,
                            const std::string& SeriesName, const std::string& MeterSN,
                            bool& ArrayIsEmpty, std::int16_t ReCalID) {
  PointArray imported;
  context.trap("Error in RawData:ImportCurvedData", [&] {
    ArrayIsEmpty = true;
    OperationConnection connection(context, nullptr);
    const MeterInfo meter =
        findMeterInfo(context, MeterSN, connection.pointer(), ReCalID, SeriesName);
    if (meter.Series.empty()) return;
    const std::string key = numberText(meter.Series.front().SeriesID);
    context.shared().fitRecord().Fitted = readTCresults(context, sFilepath, ArrayIsEmpty);
    imported = context.shared().fitRecord().Fitted;
    if (imported.size() == 1) return;
    context.raiseStatusUpdate("Removing old fitted data from databasse for series " + SeriesName);
    connection.execute("DELETE from curve where seriesID = " + key);
    context.raiseStatusUpdate("Inserting new fitted data into database for series " + SeriesName);
    // Into merge, though the deletion was from curve: hosts that read these points look there.
    auto rows = openForBatch(connection, "Select * from merge where seriesID = " + key);
    writePoints(*rows, meter.Series.front().SeriesID, imported);
  });
  return imported;
}

}  // namespace pelmora
