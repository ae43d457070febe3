// A host with several threads: stress_host CURVES NAME THREADS SERIES stores SERIES series in each
// thread, with its own object and its own connections, and prints how often it was refused. With a
// fifth argument each thread registers a calibration of meter "Shared" before each series.
// SPDX-License-Identifier: MIT
#include <pelmora/pelmora.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace pelmora;

std::atomic<int> refusals = 0;

PointArray points(int seed) {
  PointArray table(20);
  for (std::size_t i = 0; i < table.size(); ++i) {
    table.column(0)[i] = 10.0 + static_cast<double>(i);
    table.column(1)[i] = 2.0 + 0.01 * static_cast<double>(i) + 0.1 * seed;
  }
  return table;
}

void store(const std::string& path, const std::string& name, int count, bool registers) {
  bool isRefused = false;
  platform().messageBox = [&](const std::string&, int, const std::string&) {
    isRefused = true;
    return 1;
  };
  RawData data;
  data.dbDirSetByString(path);
  for (int i = 0; i < count; ++i) {
    while (registers && data.setMeterSN("Shared") == 0) ++refusals;
    const std::string series = name + "-" + std::to_string(i);
    // A refused operation has stored nothing, the series without its points, or, where its look-up
    // of the meter was refused, everything under no meter.
    do {
      isRefused = false;
      if (!data.SetRaw(series, "M", points(i), 0, false)) isRefused = true;
      if (isRefused) ++refusals;
    } while (isRefused);
    bool isEmpty = true;
    (void)data.Meters(isEmpty);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5 && argc != 6) return 2;
  std::vector<std::jthread> threads;
  for (int i = 0; i < std::atoi(argv[3]); ++i) {
    threads.emplace_back(store, argv[1], argv[2] + ("-" + std::to_string(i)), std::atoi(argv[4]),
                         argc == 6);
  }
  threads.clear();
  std::printf("%d\n", refusals.load());
}
