// The report of a calibration, in the form that a reader or a program wants.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/export.h>

#include <optional>
#include <string>
#include <vector>

// In the library pelmora::report, which brings the libraries that only reports need.
namespace pelmora::calibration {

enum class ReportKind {
  html = 0,  // a page that works offline and prints
  json = 1,
  csv = 2,   // all tables below one header line
  xlsx = 3,  // a sheet for each table
  svg = 4    // the plots
};

struct ReportOptions {
  std::vector<std::string> series{};  // empty: all of the calibration
  UnkeptSettings unkept{};
};

// By the ending of a file's name; nothing for an ending that is none of these.
[[nodiscard]] PELMORA_API std::optional<ReportKind> reportKindOf(const std::string& file);

// The bytes of a report. Nothing stored is changed.
//
// Errors: NotFound for a series; BadData where stored points cannot be read.
[[nodiscard]] PELMORA_API std::string makeReport(const Database& lab, const Meter& meter,
                                                 ReportKind kind,
                                                 const ReportOptions& options = {});

// Writes it to a file whose ending tells the kind. A file that is there already is replaced once
// the new one is complete.
//
// Errors: as makeReport; BadData for an ending that is none of ReportKind's; Unusable where the
// file
//         cannot be written.
PELMORA_API void writeReport(const Database& lab, const Meter& meter, const std::string& file,
                             const ReportOptions& options = {});

}  // namespace pelmora::calibration
