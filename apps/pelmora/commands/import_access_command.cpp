// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/lock_holder.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/output/progress.h"
#include "apps/pelmora/output/proof_output.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "report/json_values.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/import_access.h>

#include <nlohmann/json.hpp>

#include <memory>

namespace pelmora::cli {
namespace {

struct ImportAccessRequest {
  std::string file;
  DatabaseOption curves;
  bool asJson = false;
};

void print(const ImportAccessRequest& request, const std::string& heading,
           const calibration::ProofSheet& sheet) {
  if (request.asJson) {
    nlohmann::json value = proofJson(sheet);
    value["file"] = request.file;
    value["database"] = request.curves.path;
    return printData(report::jsonText(value));
  }
  printData(wrapped(heading, 0) + "\n" + proofText(sheet) +
            (sheet.isComplete() ? "\n" + wrapped("Nothing is missing.", 0) : ""));
}

calibration::ProofSheet imported(const ImportAccessRequest& request) {
  Progress progress;
  calibration::OpenOptions options;
  options.patience = patienceWith(request.curves.path, request.curves.wait, progress);
  calibration::Observer observer;
  observer.status = [&](const std::string& text) {
    requireNotInterrupted();
    progress.show(text);
  };
  try {
    return calibration::importAccess(request.file, request.curves.path, std::move(options),
                                     observer);
  } catch (const calibration::NoCurveDatabase& other) {
    print(request, "Read from " + request.file + ":", other.sheet());
    throw Trouble(ExitCode::badInput, other.what(), other.remedy() + "; nothing was stored");
  } catch (const calibration::NotFound& missing) {
    throw Trouble(ExitCode::database, missing.what(), missing.remedy());
  } catch (const calibration::Damaged& damaged) {
    throw Trouble(ExitCode::badInput, damaged.what(), "nothing was stored");
  }
}

void importAccess(const ImportAccessRequest& request) {
  const calibration::ProofSheet sheet = imported(request);
  noteStored();
  print(request, "Copied from " + request.file + " into " + request.curves.path + ":", sheet);
  if (sheet.isComplete()) return;
  throw Trouble(ExitCode::badInput, "not everything in '" + request.file + "' was copied",
                "'" + request.curves.path +
                    "' holds the rest; repair the file in Access, or use an older copy of it, and "
                    "import it into a new curve database");
}

}  // namespace

void addImportAccessCommand(Program& program) {
  Command command = program.add(
      "import-access",
      "Copy a whole curve database from an Access file, with all ids, and print a proof sheet: "
      "the rows that each table should have, those that were read and written, and every row or "
      "value that is missing, with the reason. Ends with 5 if anything is missing.");
  const auto request = std::make_shared<ImportAccessRequest>();
  addPath(command, {"OLD", "FILE", "Access file (2000 or later); it is only read", true},
          request->file);
  addDatabase(command, request->curves);
  command.setFooter(
      "A file is created if it does not exist; otherwise CURVES must be an empty curve database. "
      "On a server, make one first with 'pelmora init'.");
  addJson(command, request->asJson);
  command.onRun([request] { importAccess(*request); });
}

}  // namespace pelmora::cli
