// Any CSV export of a stand is opened and read, or refused with a message.
// SPDX-License-Identifier: MIT
#include "fuzz/scratch_file.h"

#include <pelmora/calibration.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  static const fuzz::ScratchFolder folder;
  static const std::string path = folder.file("stand.csv");
  fuzz::writeFile(path, "JobRecordID" + std::string(fuzz::textOf(data, size)));
  try {
    const calibration::Stand stand(path);
    (void)stand.jobs();
  } catch (const calibration::Failure& failure) {
    if (std::string(failure.what()).empty()) __builtin_trap();
  }
  return 0;
}
