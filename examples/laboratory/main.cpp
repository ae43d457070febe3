// A calibration from the stand's data to the report: laboratory CURVES.db STAND.csv REPORT.html
// SPDX-License-Identifier: MIT
#include <pelmora/calibration.h>
#include <pelmora/calibration/report.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace cal = pelmora::calibration;

namespace {

// Fits every series and stores the curves that pass, all of them or none.
void fitAll(cal::Database& lab, const cal::Meter& meter, double band) {
  cal::Change change = lab.begin("fit");
  for (const std::string& name : lab.seriesOf(meter)) {
    const cal::Fit fit = lab.fit(meter, name, {.band = band, .ratio = name == "Ratio"});
    if (!fit.accepted()) {
      std::printf("%-10s no curve: %s\n", name.c_str(), fit.reason().c_str());
      continue;
    }
    lab.store(fit);
    std::printf("%-10s %s, %zu points cut by the merge\n", name.c_str(), fit.chosen().Name.c_str(),
                fit.cut.size());
  }
  change.commit();
}

void calibrate(const std::string& database, const std::string& standFile,
               const std::string& report) {
  cal::Database lab = cal::create(database);
  const cal::Stand stand(standFile);

  const cal::Meter first = lab.registerMeter("TF-1001");
  lab.importRuns(first, stand, {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
  fitAll(lab, first, 0.3);

  const cal::Curve curve = lab.curve(first, "Rotor A");
  const cal::CurveValue at = curve(120.0);
  std::printf("Strouhal at Roshko 120: %.4f +- %.4f\n", at.strouhal, at.confidence.value_or(0));

  // A year later: the next calibration of the same meter, here from the same jobs in one fluid.
  const cal::Meter second = lab.registerMeter("TF-1001", true);
  lab.importRuns(second, stand, {{"1001", "Mineral spirit", "Grace"}});
  fitAll(lab, second, 0.3);
  const cal::Comparison shift =
      cal::compareCurves(curve.table(), lab.curve(second, "Rotor A").table());
  std::printf("Largest shift: %+.3f %% at Roshko %.4g\n", shift.largest().percent,
              shift.largest().roshko);

  // A curve that was replaced comes back.
  const cal::HistoryEntryId before = lab.store(lab.fit(first, "Rotor A", {.points = 60}));
  lab.restore(before);
  const bool isBack = lab.curve(first, "Rotor A").table() == curve.table();
  std::printf("The first curve is back: %s\n", isBack ? "yes" : "no");

  cal::writeReport(lab, first, report);
  std::printf("Wrote %s\n", report.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: laboratory CURVES.db STAND.csv REPORT.html\n");
    return 2;
  }
  try {
    calibrate(argv[1], argv[2], argv[3]);
    return 0;
  } catch (const cal::Failure& failure) {
    const std::string remedy = failure.remedy().empty() ? "" : "; " + failure.remedy();
    std::fprintf(stderr, "%s%s\n", failure.what(), remedy.c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
  return 1;
}
