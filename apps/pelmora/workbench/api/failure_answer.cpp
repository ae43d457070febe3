// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/failure_answer.h"

#include "apps/pelmora/trouble.h"
#include "base/readable_number.h"

#include <pelmora/calibration/failure.h>

#include <nlohmann/json.hpp>

#include <new>
#include <string>

namespace pelmora::cli::workbench {
namespace {

using nlohmann::json;

struct Kind {
  const char* key;
  int status;
};

template <class Failed>
bool is(const calibration::Failure& failure) {
  return dynamic_cast<const Failed*>(&failure) != nullptr;
}

Kind kindOf(const calibration::Failure& failure) {
  using namespace calibration;
  if (is<NoCurve>(failure)) return {"noCurve", 404};
  if (is<NotFound>(failure)) return {"notFound", 404};
  if (is<Changed>(failure)) return {"changed", 409};
  if (is<NotRestorable>(failure)) return {"notRestorable", 409};
  if (is<Exists>(failure)) return {"exists", 409};
  if (is<Locked>(failure)) return {"locked", 503};
  if (is<Damaged>(failure)) return {"damaged", 500};
  if (is<Unusable>(failure)) return {"unusable", 500};
  if (is<OutOfRange>(failure)) return {"outOfRange", 422};
  if (is<NoFit>(failure)) return {"noFit", 422};
  if (is<BadData>(failure)) return {"badData", 400};
  return {"failed", 500};
}

Kind kindOf(const Trouble& trouble) {
  switch (trouble.code()) {
    case ExitCode::usage: return {"badData", 400};
    case ExitCode::unknownName: return {"notFound", 404};
    case ExitCode::badInput: return {"badData", 400};
    case ExitCode::notFitted: return {"noFit", 422};
    case ExitCode::rangeRefused: return {"outOfRange", 422};
    default: return {"failed", 500};
  }
}

json errorJson(const char* kind, const std::string& what, const std::string& where,
               const std::string& remedy) {
  return {
      {"error",
       {{"kind", kind}, {"what", withShortNumbers(what)}, {"where", where}, {"remedy", remedy}}}};
}

}  // namespace

http::Response jsonAnswer(const json& value, int status) {
  return {status, "application/json",
          value.dump(-1, ' ', false, json::error_handler_t::replace) + "\n"};
}

http::Response failureAnswer() {
  try {
    throw;
  } catch (const calibration::Failure& failure) {
    const Kind kind = kindOf(failure);
    return jsonAnswer(errorJson(kind.key, failure.what(), failure.where(), failure.remedy()),
                      kind.status);
  } catch (const Trouble& trouble) {
    const Kind kind = kindOf(trouble);
    return jsonAnswer(errorJson(kind.key, trouble.what(), "", trouble.remedy()), kind.status);
  } catch (const Error& error) {
    requireMemory(error);
    return jsonAnswer(errorJson("failed", error.what(), "", ""), 500);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return jsonAnswer(errorJson("failed", error.what(), "", ""), 500);
  }
}

http::Response endingAnswer() {
  return jsonAnswer(errorJson("ending", "the workbench is ending", "",
                              "start it again and look at what is stored"),
                    503);
}

}  // namespace pelmora::cli::workbench
