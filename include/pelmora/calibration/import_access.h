// Copying a whole curve database from an Access file, with a proof of what was copied.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/proof.h>
#include <pelmora/export.h>

#include <string>

namespace pelmora::calibration {

// The file does not hold a curve database, or damage hides its tables.
class PELMORA_API NoCurveDatabase : public BadData {
 public:
  NoCurveDatabase(FailureText text, ProofSheet sheet);
  ~NoCurveDatabase() override;

  // What the file holds instead.
  [[nodiscard]] const ProofSheet& sheet() const noexcept { return sheet_; }

 private:
  ProofSheet sheet_;
};

// Copies the curve database in the Access file at `path` to `location` in one transaction and keeps
// all ids. If the file at `location` does not exist, it is created as a new curve database. If it
// exists, it must be an empty curve database. A row or value that cannot be read or stored is left
// out and listed; everything else is copied.
//
// Errors: NotFound if the file at `path` does not exist; Damaged if that file is not an Access file
//         or if no part of it can be read; Unusable if this build cannot read Access files;
//         NoCurveDatabase; Exists if the curve database at `location` holds rows; Locked;
//         Cancelled. After any of them, nothing is stored.
PELMORA_API ProofSheet importAccess(const std::string& path, const std::string& location,
                                    OpenOptions options = {}, const Observer& observer = {});

}  // namespace pelmora::calibration
