// The job that every host of the Windows tests does, and its result as text: equal jobs give equal
// texts. SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <charconv>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {

using Points = std::vector<std::pair<double, double>>;

// Made-up turbine data with a little noise, in the order of two passes over the flow range.
inline Points mainJobPoints() {
  return {{10.1159788861, 1201.12217732}, {16.3153855254, 1260.8803125},
          {25.0777648629, 1290.35841452}, {38.7617592379, 1303.96887287},
          {59.0447683663, 1309.98836561}, {89.5623681341, 1311.57926099},
          {138.222795633, 1313.0916747},  {206.879332439, 1314.40483165},
          {321.61605828, 1315.43451647},  {486.893440799, 1316.19045259},
          {732.061119116, 1317.35067419}, {1101.57125399, 1317.88685975},
          {1114.53215956, 1317.92968118}, {730.533877377, 1317.34174097},
          {479.652457304, 1316.58577223}, {314.724852366, 1315.71580977},
          {209.039892462, 1314.3687006},  {137.49854559, 1312.92552237},
          {89.5803052064, 1311.59809046}, {59.7795051798, 1309.86638735},
          {38.8473171096, 1304.52061827}, {25.11500177, 1290.29973404},
          {16.0034589764, 1260.15660459}, {10.184198657, 1202.24470831}};
}
inline constexpr const char* mainJobMeter = "TF-1001";
inline constexpr const char* mainJobSeries = "Rotor A";

struct MainJobResult {
  long id = 0;
  bool isStored = false, isEmpty = true, isFitStored = false;
  int statusUpdates = 0, progressSteps = 0, lastStep = 0, maxSteps = 0;
  double low = 0, high = 0;
  Points fitted, merged, readBack;
  std::array<float, 40> roshko{}, strouhal{};
  std::string report, storedReport;
  std::vector<std::string> meters;
};

// The shortest text that is 15 (double) or 7 (float) digits long at most.
inline std::string numberText(double value, int digits) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::general, digits);
  return {text.data(), end.ptr};
}

inline std::string textOf(const char* name, const Points& points) {
  std::string text = std::string(name) + " " + std::to_string(points.size()) + "\n";
  for (const auto& [x, y] : points) text += numberText(x, 15) + " " + numberText(y, 15) + "\n";
  return text;
}

inline std::string textOf(const MainJobResult& result) {
  std::string text = "meter id " + std::to_string(result.id) + "\n";
  text += std::string("raw stored ") + (result.isStored ? "yes" : "no") + "\n";
  text += std::string("fit empty ") + (result.isEmpty ? "yes" : "no") + "\n";
  text += "status updates " + std::to_string(result.statusUpdates) + "\n";
  text += "progress steps " + std::to_string(result.progressSteps) + ", last " +
          std::to_string(result.lastStep) + " of " + std::to_string(result.maxSteps) + "\n";
  text += "range " + numberText(result.low, 15) + " " + numberText(result.high, 15) + "\n";
  text += textOf("fitted", result.fitted) + textOf("merged", result.merged);
  text += std::string("fit stored ") + (result.isFitStored ? "yes" : "no") + "\n";
  text += textOf("read back", result.readBack);
  for (std::size_t i = 0; i < result.roshko.size(); ++i) {
    text += "compact " + numberText(result.roshko[i], 7) + " " + numberText(result.strouhal[i], 7) +
            "\n";
  }
  for (const std::string& meter : result.meters) text += "meter " + meter + "\n";
  text +=
      std::string("report kept ") + (result.report == result.storedReport ? "yes" : "no") + "\n";
  return text + "report\n" + result.report + "\ndone\n";
}

}  // namespace pelmora::test
