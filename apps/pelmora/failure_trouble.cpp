// SPDX-License-Identifier: MIT
#include "apps/pelmora/failure_trouble.h"

#include "apps/pelmora/last_words.h"

namespace pelmora::cli {
namespace {

template <class Kind>
bool isKind(const calibration::Failure& failure) {
  return dynamic_cast<const Kind*>(&failure) != nullptr;
}

ExitCode codeOf(const calibration::Failure& failure) {
  if (isKind<calibration::NotFound>(failure)) return ExitCode::unknownName;
  if (isKind<calibration::NotRestorable>(failure)) return ExitCode::badInput;
  if (isKind<calibration::Damaged>(failure)) return ExitCode::badInput;
  if (isKind<calibration::Locked>(failure) || isKind<calibration::Unusable>(failure) ||
      isKind<calibration::Exists>(failure) || isKind<calibration::Changed>(failure)) {
    return ExitCode::database;
  }
  if (isKind<calibration::BadData>(failure)) return ExitCode::badInput;
  if (isKind<calibration::OutOfRange>(failure)) return ExitCode::rangeRefused;
  if (isKind<calibration::NoFit>(failure)) return ExitCode::notFitted;
  return ExitCode::unexpected;
}

// An operation that fails has stored nothing; a refit may have stored portions before.
std::string whatIsStored() {
  return isAnythingStored() ? storedWords().data() : "nothing was changed";
}

}  // namespace

Trouble troubleOf(const calibration::Failure& failure) {
  requireMemory(failure);
  if (isKind<calibration::Locked>(failure)) {
    return {ExitCode::database, failure.what(),
            whatIsStored() + "; " + failure.remedy() + ", or wait longer with --wait SECONDS"};
  }
  if (isKind<calibration::Unusable>(failure) && failure.remedy().empty())
    return {codeOf(failure), failure.what(), whatIsStored()};
  if (isKind<calibration::NoCurve>(failure))
    return {ExitCode::badInput, failure.what(), "fit it with 'pelmora fit'"};
  if (isKind<calibration::Damaged>(failure)) {
    return {codeOf(failure), failure.what(),
            failure.remedy() + " with 'pelmora doctor " + failure.where() + " --salvage NEW.db'"};
  }
  return {codeOf(failure), failure.what(), failure.remedy()};
}

}  // namespace pelmora::cli
