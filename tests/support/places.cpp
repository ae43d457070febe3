// SPDX-License-Identifier: MIT
#include "tests/support/places.h"

namespace pelmora::test {

const std::string& sourceFolder() {
  static const std::string folder = PELMORA_SOURCE_DIR;
  return folder;
}

const std::string& buildFolder() {
  static const std::string folder = PELMORA_BUILD_DIR;
  return folder;
}

}  // namespace pelmora::test
