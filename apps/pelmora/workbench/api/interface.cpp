// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/interface.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/workbench/api/failure_answer.h"
#include "apps/pelmora/workbench/api/routes.h"

#include <nlohmann/json.hpp>

#include <array>
#include <string_view>

namespace pelmora::cli::workbench {
namespace {

constexpr std::size_t megabyte = 1U << 20U;

struct Route {
  std::string_view method, path;
  http::Response (*answer)(Bench&, const http::Request&);
  std::size_t bodyLimit;
};

constexpr std::array<Route, 20> routes{{{"GET", "state", &getState, 0},
                                        {"GET", "meters", &getMeters, 0},
                                        {"GET", "meter", &getMeter, 0},
                                        {"GET", "series", &getSeries, 0},
                                        {"GET", "revision", &getRevision, 0},
                                        {"GET", "points", &getPoints, 0},
                                        {"GET", "check", &getCheck, 0},
                                        {"GET", "drift", &getDrift, 0},
                                        {"GET", "history", &getHistory, 0},
                                        {"GET", "budget", &getBudget, 0},
                                        {"GET", "report", &getReport, 0},
                                        {"GET", "table", &getTable, 0},
                                        {"GET", "openapi.json", &getInterface, 0},
                                        {"POST", "fit", &postFit, 4 * megabyte},
                                        {"POST", "upload", &postUpload, 64 * megabyte},
                                        {"POST", "store", &postStore, 4 * megabyte},
                                        {"POST", "sign", &postSign, megabyte},
                                        {"POST", "restore", &postRestore, megabyte},
                                        {"POST", "import", &postImport, megabyte},
                                        {"POST", "raw", &postPoints, megabyte}}};

http::Response noSuchRequest(int status, const std::string& what) {
  return jsonAnswer({{"error",
                      {{"kind", "noSuchRequest"},
                       {"what", what},
                       {"where", "the address"},
                       {"remedy", "see api/openapi.json"}}}},
                    status);
}

}  // namespace

http::Response answerOf(Bench& bench, const std::string& path, const http::Request& request) {
  bool isKnown = false;
  for (const Route& route : routes) {
    if (route.path != path) continue;
    isKnown = true;
    if (route.method != request.method) continue;
    try {
      return route.answer(bench, request);
    } catch (...) {
      http::Response answer = isInterrupted() ? endingAnswer() : failureAnswer();
      answer.body = bench.uploads.withNames(std::move(answer.body));
      return answer;
    }
  }
  return isKnown ? noSuchRequest(405, "this request does not go by " + request.method)
                 : noSuchRequest(404, "there is no such request");
}

std::size_t bodyLimitOf(const std::string& path) {
  for (const Route& route : routes) {
    if (route.path == path) return route.bodyLimit;
  }
  return 0;
}

}  // namespace pelmora::cli::workbench
