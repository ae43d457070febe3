// The report of a calibration, in formats for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/export.h>

#include <optional>
#include <string>
#include <vector>

// In the library pelmora::report, which links the libraries that only reports need.
namespace pelmora::calibration {

enum class ReportKind {
  html = 0,  // a page that works offline and prints
  json = 1,
  csv = 2,   // all tables under one header line
  xlsx = 3,  // one sheet per table
  svg = 4    // the plots
};

struct ReportOptions {
  std::vector<std::string> series{};  // empty: all of the calibration
  UnkeptSettings unkept{};
  Observer observer{};  // of the fits that a report repeats
};

// The kind that fits the extension of a file name; nothing for any other extension.
[[nodiscard]] PELMORA_API std::optional<ReportKind> reportKindOf(const std::string& file);

// The bytes of a report. Nothing stored is changed.
//
// Errors: NotFound for a series; BadData if stored points cannot be read.
[[nodiscard]] PELMORA_API std::string makeReport(const Database& lab, const Meter& meter,
                                                 ReportKind kind,
                                                 const ReportOptions& options = {});

// The plot of a fit, as an SVG picture: what the report shows once the fit is stored. Points that
// the merge left out are marked.
[[nodiscard]] PELMORA_API std::string plotOf(const Fit& fit);

// Writes the report to a file, whose extension decides the kind. An existing file is replaced once
// the new one is complete.
//
// Errors: as for makeReport;
//         BadData for an unknown extension;
//         Unusable if the file cannot be written.
PELMORA_API void writeReport(const Database& lab, const Meter& meter, const std::string& file,
                             const ReportOptions& options = {});

}  // namespace pelmora::calibration
