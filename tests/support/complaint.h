// What the caller of a refused action learns.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/failure.h>

#include <string>

namespace pelmora::test {

// "what failed; the remedy", or "nothing was refused".
template <class Action>
std::string complaint(Action action) {
  try {
    action();
  } catch (const calibration::Failure& failure) {
    return std::string(failure.what()) + "; " + failure.remedy();
  }
  return "nothing was refused";
}

}  // namespace pelmora::test
