// Who watches a step of a calibration while it runs.
// SPDX-License-Identifier: MIT
#pragma once

#include "points/point_sort.h"

#include <pelmora/error.h>

#include <cstdint>
#include <functional>
#include <string>

namespace pelmora::calibration::steps {

// Every function may be empty, may take its time and may throw: the step then ends with that error.
struct Observer {
  // Texts for the operator, as hosts have always got them and in their order.
  std::function<void(const std::string& text)> onStatus;
  // The step `finished` of `of` begins.
  std::function<void(std::int16_t finished, std::int16_t of)> onProgress;
  // Lets a host process its messages.
  std::function<void()> onBreath;
  // An error inside a sort, which goes on with its other ranges. Empty: it is thrown.
  std::function<void(const Error&)> onSortError;

  void status(const std::string& text) const {
    if (onStatus) onStatus(text);
  }
  void progress(std::int16_t finished, std::int16_t of) const {
    if (onProgress) onProgress(finished, of);
  }
  void breathe() const {
    if (onBreath) onBreath();
  }
  [[nodiscard]] SortWatch sortWatch() const { return {onBreath, onSortError}; }
};

}  // namespace pelmora::calibration::steps

namespace pelmora {
namespace steps = calibration::steps;
}
