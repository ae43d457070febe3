// SPDX-License-Identifier: MIT
#include "report/html_certificate.h"

#include "base/readable_number.h"
#include "report/html_table.h"
#include "report/markup.h"
#include "report/printed_values.h"
#include "report/report_details.h"
#include "report/text_list.h"

#include <algorithm>

namespace pelmora::report {
namespace {

using calibration::Run;

constexpr const char* notRecorded = "not recorded";

// The texts of all runs, each once.
template <class Member>
std::string distinct(const Report& report, Member member) {
  std::vector<std::string> texts;
  for (const Run& run : report.runs) {
    const std::string text = member(run);
    if (!text.empty() && std::ranges::find(texts, text) == texts.end()) texts.push_back(text);
  }
  return joined(texts);
}

// The parts of an address that are recorded.
std::string addressOf(const Report& report, const std::string& prefix) {
  const auto part = [&](const char* key) { return detailOf(report, prefix + key); };
  std::string text = part("street");
  const auto add = [&](const std::string& more, const char* between) {
    if (!more.empty()) text += (text.empty() ? "" : between) + more;
  };
  add(part("post-code"), ", ");
  add(part("city"), part("post-code").empty() ? ", " : " ");
  add(part("country"), ", ");
  add(part("email"), ", ");
  return text;
}

std::string calibrationDates(const Report& report) {
  const std::string first = detailOf(report, "date"), last = detailOf(report, "date-to");
  if (first.empty()) {
    const std::string imported = distinct(report, [](const Run& run) { return run.date; });
    return imported.empty() ? notRecorded : "imported " + imported;
  }
  return last.empty() || last == first ? first : first + " to " + last;
}

std::string orNotRecorded(const std::string& text) { return text.empty() ? notRecorded : text; }

// "Maker Model, 1 in"
std::string meterText(const Report& report) {
  std::string text = detailOf(report, "maker");
  const std::string model = detailOf(report, "model"), size = detailOf(report, "size");
  if (!model.empty()) text += (text.empty() ? "" : " ") + model;
  if (!size.empty()) text += (text.empty() ? "" : ", ") + size;
  return text;
}

class FactTable {
 public:
  void add(const std::string& name, const std::string& value) {
    if (value.empty()) return;
    html_ += "<tr><th scope=row>" + escaped(name) + "<td>" + escaped(value) + "\n";
  }
  // A detail under its own label, if it is recorded.
  void addDetail(const Report& report, const std::string& key) {
    add(calibration::detailField(key).label, detailOf(report, key));
  }
  [[nodiscard]] std::string take(const std::string& title) const {
    return "<div class=block><h2>" + title + "</h2>\n<table class=facts aria-label=\"" + title +
           "\"><tbody>\n" + html_ + "</table></div>\n";
  }

 private:
  std::string html_;
};

std::string meterFacts(const Report& report) {
  FactTable facts;
  facts.add("Serial number", report.meter.serial);
  if (report.meter.adjusted != report.meter.serial)
    facts.add("Adjusted serial number", report.meter.adjusted);
  facts.add("Item", detailOf(report, "description"));
  facts.add("Maker, model, size", orNotRecorded(meterText(report)));
  for (const char* key : {"inventory-number", "diameter", "expansion"})
    facts.addDetail(report, key);
  const std::string customer = detailOf(report, "customer");
  facts.add("Customer", orNotRecorded(customer));
  facts.add("Address", addressOf(report, "customer-"));
  facts.addDetail(report, "order-number");
  return facts.take("Meter and customer");
}

std::string laboratoryFacts(const Report& report) {
  FactTable facts;
  facts.add("Laboratory", orNotRecorded(detailOf(report, "name")));
  facts.add("Address", addressOf(report, ""));
  for (const char* key : {"accreditation", "certificate-number"}) facts.addDetail(report, key);
  facts.add("Calibration",
            "No. " + std::to_string(report.meter.calibration) + ", " + calibrationDates(report));
  for (const char* key : {"issue-date", "place"}) facts.addDetail(report, key);
  return facts.take("Calibration");
}

std::string standText(const Report& report) {
  const auto number = [](int value) { return value < 0 ? "" : std::to_string(value); };
  const std::string stand = distinct(report, [&](const Run& run) { return number(run.stand); });
  const std::string place = distinct(report, [&](const Run& run) { return number(run.position); });
  return stand + (place.empty() ? "" : (stand.empty() ? "" : ", ") + ("position " + place));
}

// The air around the meter; the units tell the values apart.
std::string ambientText(const Report& report) {
  std::vector<std::string> texts;
  const auto add = [&](const char* key, const char* more) {
    const std::string value = detailOf(report, key);
    if (!value.empty()) texts.push_back(value + more);
  };
  add("ambient-temperature", "");
  add("ambient-humidity", " relative humidity");
  add("ambient-pressure", "");
  return joined(texts);
}

std::string methodFacts(const Report& report) {
  FactTable facts;
  for (const char* key : {"method", "procedure"}) facts.addDetail(report, key);
  facts.add("Traceability", orNotRecorded(detailOf(report, "traceability")));
  facts.add("Fluids", orNotRecorded(distinct(report, [](const Run& run) { return run.fluid; })));
  facts.add("Stand", orNotRecorded(standText(report)));
  facts.add("Operators",
            orNotRecorded(distinct(report, [](const Run& run) { return run.operatorName; })));
  facts.add("Jobs", distinct(report, [](const Run& run) { return joined(run.jobs); }));
  facts.add("Ambient", ambientText(report));
  facts.addDetail(report, "line-pressure");
  return facts.take("Method and conditions");
}

std::string verdict(const SeriesReport& series) {
  if (series.curve.empty()) return "no curve";
  const SeriesResult& result = series.result;
  if (!result.limitPercent) return "no limit";
  if (!result.passes) return "not decided";
  return *result.passes ? "PASS" : "FAIL";
}

std::string rangeText(const SeriesResult& result) {
  if (!result.lowestRoshko) return "-";
  return significantText(*result.lowestRoshko, 4) + " to " +
         significantText(*result.highestRoshko, 4);
}

std::string percentOrNone(const std::optional<double>& percent) {
  return percent ? percentText(*percent) : "-";
}

std::string magnitude(const std::optional<double>& percent) {
  return percent ? fixedText(*percent < 0 ? -*percent : *percent, 3) : "-";
}

// What U means, for all series that have one, and why the others have none.
std::string uncertaintyNote(const Report& report) {
  std::optional<UncertaintySpan> all;
  const UncertaintyStatement* first = nullptr;
  std::string none;
  for (const SeriesReport& series : report.series) {
    const UncertaintyStatement& u = series.uncertainty;
    if (!u.isStated()) {
      none +=
          (none.empty() ? "No U is stated for " : "; none for ") + series.name + ": " + u.whyNone;
      continue;
    }
    if (!all) all = u.span;
    all->lowestFactor = std::min(all->lowestFactor, u.span.lowestFactor);
    all->highestFactor = std::max(all->highestFactor, u.span.highestFactor);
    if (first == nullptr) first = &u;
  }
  std::string text;
  if (first != nullptr) {
    UncertaintyStatement together = *first;
    together.span = *all;
    text = uncertaintyText(together);
  }
  if (none.empty()) return text;
  return text + (text.empty() ? "" : " ") + none + ".";
}

// What the numbers of the table mean, and which curve they refer to.
std::string resultNotes(const Report& report) {
  const auto any = [&](auto has) { return std::ranges::any_of(report.series, has); };
  std::string text =
      "Deviations are those of the used points from the stored curve, whose table is read linearly "
      "between its points; PASS and FAIL compare the largest one with the limit, without regard to "
      "the uncertainty U (simple acceptance)." +
      std::string(any([](const SeriesReport& s) { return s.result.distrusted > 0; })
                      ? " The largest one takes in the distrusted points: they contradict the "
                        "others, the curve was fitted without them, and nobody has excluded them."
                      : "") +
      " Mean K: half the sum of the largest and the smallest "
      "value; linearity: half their difference.";
  if (any([](const SeriesReport& s) { return s.result.repeatabilityPercent.has_value(); })) {
    text +=
        " Repeatability and hysteresis are the largest of all nominal flows, of the deviations "
        "from the curve.";
  } else {
    text +=
        " Repeatability and hysteresis are not stated: the nominal flows of the points are not "
        "recorded, or no flow was measured twice.";
  }
  if (any([](const SeriesReport& s) { return s.attempt.has_value(); }))
    text += " Series without a stored curve: deviations from the curve that is drawn.";
  text += " " + uncertaintyNote(report);
  std::string missing = detailOf(report, "roshko-unit").empty() ? "Roshko" : "";
  if (detailOf(report, "strouhal-unit").empty())
    missing += missing.empty() ? "Strouhal" : " and Strouhal";
  if (!missing.empty())
    text += " The units of " + missing + " numbers are not recorded: they are those of the stand.";
  return "<p class=\"fine\">" + escaped(text) + "</p>\n";
}

}  // namespace

std::string reportTitle(const Report& report) {
  return detailOf(report, "certificate-number").empty() ? "Calibration report"
                                                        : "Calibration certificate";
}

std::string pageName(const Report& report) {
  const std::string number = detailOf(report, "certificate-number");
  return (number.empty() ? std::string() : "Certificate " + number + ", ") + "Meter " +
         report.meter.serial + ", calibration " + std::to_string(report.meter.calibration);
}

std::string htmlFacts(const Report& report) {
  return "<div class=blocks>\n" + meterFacts(report) + laboratoryFacts(report) +
         methodFacts(report) + "</div>\n";
}

std::string htmlResults(const Report& report) {
  const bool hasDistrusted = std::ranges::any_of(
      report.series, [](const SeriesReport& s) { return s.result.distrusted > 0; });
  HtmlTable table("Results",
                  {{"Series", false},
                   {"Result", false},
                   {withUnit(report, "Roshko", "roshko-unit"), true},
                   {"Turndown", true},
                   {withUnit(report, "Mean K", "strouhal-unit"), true},
                   {"Linearity \u00B1 %", true},
                   {"Largest dev. %", true},
                   {"Limit \u00B1 %", true},
                   {"U %", true},
                   {"Repeat. %", true},
                   {"Hyst. %", true},
                   {hasDistrusted ? "Used / cut / excl. / distr." : "Used / cut / excl.", true}},
                  "keep results");
  for (const SeriesReport& series : report.series) {
    const SeriesResult& r = series.result;
    const bool isFactor = !isQuotient(series) && r.meanFactor.has_value();
    table.addRow({series.name, verdict(series), rangeText(r),
                  r.turndown ? fixedText(*r.turndown, 1) + " : 1" : "-",
                  isFactor ? printedFactor(*r.meanFactor) : "-",
                  isFactor ? magnitude(r.linearityPercent) : "-", percentOrNone(r.worstPercent),
                  r.limitPercent ? significantText(*r.limitPercent, 4) : "-",
                  series.uncertainty.isStated() ? percentSpanText(series.uncertainty.span) : "-",
                  magnitude(r.repeatabilityPercent), magnitude(r.hysteresisPercent),
                  std::to_string(r.used) + " / " + std::to_string(r.cut) + " / " +
                      std::to_string(r.excluded) +
                      (hasDistrusted ? " / " + std::to_string(r.distrusted) : "")},
                 r.passes && !*r.passes ? "fail" : "");
  }
  return "<h2>Results</h2>\n" + table.take() + resultNotes(report);
}

}  // namespace pelmora::report
