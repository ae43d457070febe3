// How this folder, and folders that build on it, refuse unusable arguments.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/failure.h>

#include <string>

namespace pelmora::uncertainty {

[[noreturn]] inline void refuse(const std::string& what, const std::string& remedy) {
  throw calibration::BadData({what, "", remedy});
}

}  // namespace pelmora::uncertainty
