// Signatures under series.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/database_parts.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/sign_off.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

py::dict signOffRecord(const cal::SignOff& entry, const std::string& now) {
  return py::dict("id"_a = entry.id, "name"_a = textOf(entry.name),
                  "remark"_a = textOf(entry.remark), "signed_at"_a = textOf(entry.signedAt),
                  "user"_a = textOf(entry.userName), "version"_a = textOf(entry.softwareVersion),
                  "fingerprint"_a = textOf(entry.fingerprint),
                  "valid"_a = entry.fingerprint == now);
}

// fingerprint: of the series as it was seen; empty: as it is now.
py::dict sign(Laboratory& lab, const cal::Meter& meter, const std::string& series,
              const std::string& name, const std::string& remark, const std::string& fingerprint) {
  const cal::SignOff made = lab.change([&](cal::Database& database) {
    const cal::StoredSeries seen = database.series(meter, series);
    if (!fingerprint.empty() && fingerprint != cal::signedFingerprint(seen)) {
      throw cal::Changed({"series '" + seen.name + "' has changed since it was looked at",
                          database.location(), "look at it again, then sign"});
    }
    return database.signOff(seen, name, remark);
  });
  return signOffRecord(made, made.fingerprint);
}

py::list signOffs(Laboratory& lab, const cal::Meter& meter, const std::string& series) {
  const auto [entries, now] = lab.use([&](cal::Database& database) {
    const cal::StoredSeries stored = database.series(meter, series);
    return std::pair(database.signOffs(stored), cal::signedFingerprint(stored));
  });
  py::list list;
  for (const cal::SignOff& entry : entries) list.append(signOffRecord(entry, now));
  return list;
}

}  // namespace

void bindSignOffs(py::class_<Laboratory>& type) {
  type.def("sign_off", &sign, "meter"_a, "series"_a, "name"_a, "remark"_a, "fingerprint"_a)
      .def("sign_offs", &signOffs, "meter"_a, "series"_a);
}

}  // namespace pelmora::python
