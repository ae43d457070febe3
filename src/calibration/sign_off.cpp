// SPDX-License-Identifier: MIT
#include <pelmora/calibration/database.h>

#include "base/full_number.h"
#include "base/sha256.h"
#include "base/text_flaw.h"
#include "base/time_text.h"
#include "base/trimmed_text.h"
#include "base/version.h"
#include "calibration/session.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace pelmora::calibration {
namespace {

constexpr std::size_t longestName = 200, longestRemark = 2000;

// Texts may hold line breaks: their length goes before them, so that no two contents read alike.
void addText(std::string& lines, const std::string& name, const std::string& text) {
  lines += name + "\t" + std::to_string(text.size()) + "\t" + text + "\n";
}
void addNumber(std::string& lines, const std::string& name, double value) {
  lines.append(name).append("\t").append(fullNumberText(value)).append("\n");
}
void addNumber(std::string& lines, const std::string& name, const std::optional<double>& value) {
  if (value) addNumber(lines, name, *value);
}
void addWhole(std::string& lines, const std::string& name, std::int64_t value) {
  lines += name + "\t" + std::to_string(value) + "\n";
}

void addSettings(std::string& lines, const CurveSettings& settings) {
  addNumber(lines, "band", settings.BandPercent);
  addWhole(lines, "points", settings.Points);
  addNumber(lines, "min", settings.Min);
  addNumber(lines, "max", settings.Max);
  addWhole(lines, "ratio", settings.RatioCurve ? 1 : 0);
  addWhole(lines, "inverted", settings.Inverted ? 1 : 0);
  addWhole(lines, "ignoreResiduals", settings.IgnoreResiduals ? 1 : 0);
  // What an earlier version left empty means what was usual then.
  addText(lines, "choice",
          settings.Choice.empty() ? choiceKey(Choice::adjustedR2) : settings.Choice);
  addText(lines, "spacing",
          settings.Spacing.empty() ? spacingKey(PointSpacing::usual) : settings.Spacing);
  addNumber(lines, "fitMin", settings.FitMin);
  addNumber(lines, "fitMax", settings.FitMax);
  for (const std::string& name : settings.Only) addText(lines, "only", name);
  for (const std::string& name : settings.Without) addText(lines, "without", name);
  if (settings.MaxOrder) addWhole(lines, "maxOrder", *settings.MaxOrder);
  if (settings.Equations) addText(lines, "equations", *settings.Equations);
  addNumber(lines, "mergeBand", settings.MergeBandPercent);
  addWhole(lines, "keepsOverlap", settings.KeepsOverlap ? 1 : 0);
  addText(lines, "fittedBy", settings.SoftwareVersion);
}

void addPoints(std::string& lines, const std::string& name, const PointArray& points) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    lines.append(name).append("\t").append(fullNumberText(points(i, 0)));
    lines.append("\t").append(fullNumberText(points(i, 1))).append("\n");
  }
}

void requireText(const std::string& what, const std::string& text, std::size_t longest) {
  if (text.size() > longest) {
    throw BadData(
        {what + " is longer than " + std::to_string(longest) + " bytes", "", "shorten it"});
  }
  if (flawOf(text) != TextFlaw::none) {
    throw BadData({what + " contains a control character or bytes that are not UTF-8", "",
                   "type it on one line"});
  }
}

SignOff signOffOf(const Recordset& rows) {
  SignOff entry;
  entry.id = toInt32(rows.value("SignOffID"));
  entry.name = toText(rows.value("Name"));
  entry.remark = toText(rows.value("Remark"));
  entry.signedAt = toText(rows.value("SignedAt"));
  entry.userName = toText(rows.value("UserName"));
  entry.fingerprint = toText(rows.value("Fingerprint"));
  entry.softwareVersion = toText(rows.value("SoftwareVersion"));
  return entry;
}

void addRow(Connection& curves, std::int32_t seriesID, const SignOff& entry) {
  createOwnTable(curves, signOffTable, "This database cannot keep signatures.");
  static constexpr std::array<std::string_view, 7> fields{
      "SeriesID", "Name", "Remark", "SignedAt", "UserName", "Fingerprint", "SoftwareVersion"};
  const std::array values{Value(std::int64_t{seriesID}), Value(entry.name),
                          Value(entry.remark),           Value(entry.signedAt),
                          Value(entry.userName),         Value(entry.fingerprint),
                          Value(entry.softwareVersion)};
  readRows(curves, std::string("Select * from ") + signOffTable + " where 1=0")
      ->addRow(fields, values);
}

}  // namespace

std::string signedContents(const StoredSeries& series) {
  std::string lines;
  addText(lines, "meter", series.meter.serial);
  addWhole(lines, "calibration", series.meter.calibration);
  addText(lines, "series", series.name);
  for (int part = 1; part <= 4; ++part)
    addPoints(lines, "raw" + std::to_string(part),
              series.raw.at(static_cast<std::size_t>(part - 1)));
  for (const ExcludedPoint& point : series.excluded) {
    lines += "excluded\t" + std::to_string(point.part) + "\t" + std::to_string(point.number) +
             "\t" + fullNumberText(point.roshko) + "\t" + fullNumberText(point.strouhal) + "\n";
    addText(lines, "reason", point.exclusion.reason);
  }
  if (series.settings) addSettings(lines, *series.settings);
  addPoints(lines, "merged", series.merged);
  addPoints(lines, "curve", series.curve);
  return lines;
}

std::string signedFingerprint(const StoredSeries& series) {
  return sha256Hex(signedContents(series));
}

SignOff Database::signOff(const StoredSeries& seen, const std::string& name,
                          const std::string& remark) {
  const std::string place = placeOf(seen.meter, seen.name);
  SignOff entry;
  entry.name = trimmed(name);
  entry.remark = trimmed(remark);
  if (entry.name.empty())
    throw BadData({"a signature needs a name", place, "type the name of the person who signs"});
  requireText("the name", entry.name, longestName);
  requireText("the remark", entry.remark, longestRemark);
  (void)seen.storedCurve();
  entry.fingerprint = signedFingerprint(seen);
  entry.signedAt = utcText();
  entry.userName = session_->userName();
  entry.softwareVersion = version;
  return session_->changing("sign", "signing " + place, [&] {
    const StoredSeries now = series(seen.meter, seen.name);
    if (now.id != seen.id || signedFingerprint(now) != entry.fingerprint) {
      throw Changed(
          {place + " has changed since it was shown", location(), "look at it again, then sign"});
    }
    if (now.age == CurveAge::outdated)
      throw BadData({now.ageWarning(), location(), "fit it and store the curve, then sign"});
    addRow(*session_->curves(), now.id, entry);
    return signOffs(now).front();
  });
}

std::vector<SignOff> Database::signOffs(const StoredSeries& series) const {
  const std::string doing = "reading the signatures of " + placeOf(series.meter, series.name);
  return session_->asking(doing, [&] {
    std::vector<SignOff> list;
    Connection& curves = *session_->curves();
    if (!hasOwnTable(curves, signOffTable)) return list;
    const auto rows = readRows(curves, std::string("Select * from ") + signOffTable +
                                           " where SeriesID=" + std::to_string(series.id) +
                                           " order by SignOffID");
    for (; !rows->atEnd(); rows->moveNext()) list.push_back(signOffOf(*rows));
    std::reverse(list.begin(), list.end());
    return list;
  });
}

}  // namespace pelmora::calibration
