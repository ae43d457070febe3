// Any statement on a curve database with a few rows is run, or refused with an error. It is undone
// afterwards, so that each statement meets the same rows.
// SPDX-License-Identifier: MIT
#include "fuzz/scratch_file.h"
#include "store/connection.h"

#include <pelmora/calibration.h>
#include <pelmora/database.h>
#include <pelmora/own_tables.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

pelmora::ConnectionPtr curvesWithPoints(const std::string& path) {
  namespace cal = pelmora::calibration;
  cal::Database lab = cal::create(path);
  const cal::Meter meter = lab.registerMeter("M1");
  lab.storeRaw(meter, "Rotor A", 1, {{10, 1000}, {20, 1010}, {40, 1015}});
  return pelmora::openDatabase(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  static const fuzz::ScratchFolder folder;
  static const ConnectionPtr curves = curvesWithPoints(folder.file("curves.db"));
  const std::string statement(fuzz::textOf(data, size));
  try {
    const Transaction undone(curves);
    const auto rows =
        curves->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
    for (; !rows->atEnd(); rows->moveNext()) (void)rows->recordCount();
  } catch (const Error&) {
  }
  try {
    const Transaction undone(curves);
    curves->execute(statement);
  } catch (const Error&) {
  }
  return 0;
}
