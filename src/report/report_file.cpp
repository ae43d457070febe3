// SPDX-License-Identifier: MIT
#include "report/report_file.h"

#include "files/replace_file.h"
#include "report/report_model.h"

#include <pelmora/calibration/failure.h>

namespace pelmora::report {

void writeFile(const std::string& file, const std::string& content, const std::stop_token& stop) {
  try {
    replaceFile(file, content, [&] { requireGoOn(stop); });
  } catch (const CannotReplaceFile& failure) {
    throw calibration::Unusable({"'" + file + "' cannot be written: " + failure.what(), file,
                                 "check the folder and the room on the disk"});
  }
}

}  // namespace pelmora::report
