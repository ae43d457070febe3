// Whatever is wrong in a damaged curve database, reading, fitting, examining and salvaging it end
// with values or with one of the service's failures.
// SPDX-License-Identifier: MIT
#include "fuzz/damage.h"
#include "fuzz/scratch_file.h"
#include "store/salvage.h"

#include <pelmora/calibration.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

namespace cal = pelmora::calibration;

pelmora::PointArray points(double shift) {
  pelmora::PointArray list(12, 2);
  for (std::size_t i = 0; i < list.size(); ++i) {
    list(i, 0) = shift * 10 * std::pow(1.7, static_cast<double>(i));
    list(i, 1) = 1000 * (1 - 2 / list(i, 0));
  }
  return list;
}

std::string wholeDatabase(const std::string& path) {
  {
    cal::Database lab = cal::create(path);
    const cal::Meter meter = lab.registerMeter("M1");
    lab.storeRaw(meter, "Rotor A", 1, points(1));
    lab.storeRaw(meter, "Rotor A", 2, points(3));
    lab.storeRaw(meter, "Rotor B", 1, points(2));
    for (const std::int16_t rows : {40, 20}) {  // the second makes a history entry
      cal::FitSettings settings;
      settings.points = rows;
      settings.choice = cal::Choice::trusted;
      lab.store(lab.fit(meter, "Rotor A", settings));
    }
  }
  std::string content = pelmora::fuzz::readFile(path);
  std::remove(path.c_str());
  return content;
}

template <class Body>
void attempt(Body&& body) {
  try {
    body();
  } catch (const cal::Failure& failure) {
    if (std::string(failure.what()).empty()) __builtin_trap();
  } catch (const pelmora::Error&) {  // from below the service
  }
}

// One equation is enough: the target is the code that reads the points, not the fit.
cal::FitSettings quickFit() {
  cal::FitSettings settings;
  settings.equations = cal::EquationList::parse("; one\nLine\ta+b*ln(x)\n", "the target");
  settings.points = 5;
  return settings;
}

void readAll(const std::string& path) {
  static const cal::FitSettings settings = quickFit();
  cal::Database lab = cal::open(path, {.patience = {}});
  for (const cal::Meter& meter : lab.meters()) {
    attempt([&] { (void)lab.runs(meter); });
    attempt([&] {
      for (const std::string& name : lab.seriesOf(meter)) {
        attempt([&] { (void)lab.curve(meter, name); });
        attempt([&] { (void)lab.fit(meter, name, settings); });
      }
    });
  }
  attempt([&] {
    for (const cal::HistoryEntry& entry : lab.history()) {
      attempt([&] { (void)lab.restore(entry.id); });
    }
  });
  attempt([&] { (void)lab.examine(); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const pelmora::fuzz::ScratchFolder folder;
  static const std::string path = folder.file("curves.db"), saved = folder.file("saved.db");
  static const std::string whole = wholeDatabase(path);
  pelmora::fuzz::writeFile(path, pelmora::fuzz::damaged(whole, data, size));
  attempt([&] { readAll(path); });
  pelmora::fuzz::writeFile(path, pelmora::fuzz::damaged(whole, data, size));
  attempt([&] { (void)pelmora::salvageDatabase(path, saved); });
  for (const char* left : {"", "-journal", "-wal", "-shm"}) {
    std::remove((path + left).c_str());
    std::remove((saved + left).c_str());
  }
  return 0;
}
