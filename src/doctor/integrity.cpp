// SPDX-License-Identifier: MIT
#include "doctor/integrity.h"

#include "store/connection.h"

#include <pelmora/database.h>
#include <pelmora/error.h>

namespace pelmora::doctor {
namespace {

constexpr std::size_t mostPlaces = 200;
constexpr std::int32_t unknownFormat = 321;

}  // namespace

std::vector<IntegrityProblem> damageOf(const std::string& path, const Patience& patience) {
  ConnectionPtr curves;
  try {
    curves = openDatabase(path, patience);
  } catch (const Error& error) {
    if (error.number() != unknownFormat) throw;
    const SalvageReport held =
        salvageDatabase(path, {}, patience);  // throws where it never was a database
    if (held.Tables.empty()) throw;
    return {{"The file can no longer be opened as a database", 1, error.what()}};
  }
  auto* check = dynamic_cast<IntegrityCheck*>(curves.get());
  return check == nullptr ? std::vector<IntegrityProblem>() : check->integrityProblems(mostPlaces);
}

}  // namespace pelmora::doctor
