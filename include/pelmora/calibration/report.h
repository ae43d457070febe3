// The report of a calibration, in formats for people and for programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/export.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

// In the library pelmora::report, which links the libraries that only reports need.
namespace pelmora::calibration {

enum class ReportKind {
  html = 0,  // a page that works offline and prints
  json = 1,
  csv = 2,   // one table below the other, each with its header line
  xlsx = 3,  // one sheet per table
  svg = 4,   // the plots
  pdf = 5,   // PDF/A-3b, made by the program weasyprint; the digital certificate is attached
  dcc = 6    // digital calibration certificate, XML
};

// Files in PEM form: the private key that signs a digital certificate, and its X.509 certificate.
struct Signer {
  std::string keyFile, certificateFile;
};

struct ReportOptions {
  std::vector<std::string> series{};  // empty: all of the calibration
  UnkeptSettings unkept{};
  Observer observer{};             // of the fits that a report repeats
  bool storedText = false;         // on the page: the text report that is stored with each curve
  std::string table{};             // of a CSV: this table alone; empty: all of them
  std::optional<Signer> signer{};  // of a digital certificate; xmlsec1 signs as the last step
  // Called with what the reader should know besides: why a PDF has no certificate attached.
  std::function<void(const std::string& words)> note{};
};

// The kind that fits the extension of a file name; nothing for any other extension.
[[nodiscard]] PELMORA_API std::optional<ReportKind> reportKindOf(const std::string& file);

// The bytes of a report. Nothing stored is changed.
//
// Errors: NotFound for a series; BadData if stored points cannot be read, for an unknown table, if
//         details that a digital certificate needs (details.h) are missing, and if a signer's files
//         cannot be used; Unusable if weasyprint or xmlsec1 is needed and not installed.
[[nodiscard]] PELMORA_API std::string makeReport(const Database& lab, const Meter& meter,
                                                 ReportKind kind,
                                                 const ReportOptions& options = {});

// The plot of a fit, as an SVG picture: what the report shows once the fit is stored. Points that
// the merge left out are marked.
//
// Errors: Cancelled at a stop.
[[nodiscard]] PELMORA_API std::string plotOf(const Fit& fit, const std::stop_token& stop = {});

// Writes the report to a file, whose extension decides the kind. An existing file is replaced once
// the new one is complete and on the disk; its permissions are kept. A symbolic link stays a link:
// the file that it points to is replaced.
//
// Errors: as for makeReport;
//         BadData for an unknown extension;
//         Unusable if the file cannot be written or is not a regular file.
PELMORA_API void writeReport(const Database& lab, const Meter& meter, const std::string& file,
                             const ReportOptions& options = {});

// What keeps a digital calibration certificate from saying what it should.
struct CertificateFlaw {
  std::size_t line = 0;
  std::string what;  // one clause
};

// Rules that the schema of digital calibration certificates does not check: units are units of the
// SI, the lists of a result are equally long, values are finite numbers, an expanded uncertainty
// has its coverage factor and probability and is not below the laboratory's capability.
//
// xml: the text of the file; file: its name, for errors. cmcPercent: the capability in per cent of
// the value; absent: not checked.
// Errors: BadData for a text that is not XML or not such a certificate.
[[nodiscard]] PELMORA_API std::vector<CertificateFlaw> checkCertificate(
    const std::string& xml, const std::string& file, std::optional<double> cmcPercent = {});

}  // namespace pelmora::calibration
