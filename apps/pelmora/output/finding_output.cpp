// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/finding_output.h"

#include "apps/pelmora/output/terminal_colour.h"
#include "apps/pelmora/output/text_table.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

using calibration::Finding;
using calibration::Severity;

std::string severityText(Severity severity) {
  switch (severity) {
    case Severity::note: return "note";
    case Severity::warning: return "warning";
    case Severity::error: return "error";
  }
  return "error";
}

std::string findingLines(const Finding& finding) {
  const Colour colour = finding.severity == Severity::error     ? Colour::red
                        : finding.severity == Severity::warning ? Colour::yellow
                                                                : Colour::green;
  std::string text =
      coloured(stdout, colour, severityText(finding.severity)) + " " + finding.id + "\n" +
      wrapped(finding.text + ": " + std::to_string(finding.count) +
                  (finding.example.empty() ? "" : "; for example " + finding.example) + ".",
              2);
  if (!finding.remedy.empty()) text += wrapped("Remedy: " + finding.remedy + ".", 2);
  return text;
}

nlohmann::json findingJson(const Finding& finding) {
  return {{"id", finding.id},           {"severity", severityText(finding.severity)},
          {"count", finding.count},     {"text", finding.text},
          {"example", finding.example}, {"repairable", finding.canBeRepaired},
          {"remedy", finding.remedy}};
}

}  // namespace pelmora::cli
