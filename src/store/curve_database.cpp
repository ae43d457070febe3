// SPDX-License-Identifier: MIT
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/connection.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/row_text.h"
#include "store/table_design.h"

#include <pelmora/curve_database.h>

namespace pelmora {
namespace {

std::unique_ptr<Recordset> read(const ConnectionPtr& curves, const std::string& statement) {
  if (!curves) throw makeError(RunTimeError::noObject);
  return curves->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

std::int32_t number(const Value& value) { return isNull(value) ? 0 : toInt32(value); }

std::string nameOf(const ConnectionPtr& curves, const std::string& table, const Value& id) {
  if (isNull(id)) return {};
  const auto rows =
      read(curves, "Select Name from " + table + " where ID=" + numberText(toInt32(id)));
  return rows->atEnd() ? std::string() : toText(rows->value("Name"));
}

}  // namespace

std::vector<CalSetupInfo> calSetups(const ConnectionPtr& curves, std::int32_t MeterID) {
  std::vector<CalSetupInfo> setups;
  const auto rows = read(curves,
                         "Select ID, Stand, MeterPosition, OperatorID, FluidID, DateTaken "
                         "from CalSetup where meterID=" +
                             numberText(MeterID) + " ORDER BY stand, ID ASC");
  for (; !rows->atEnd(); rows->moveNext()) {
    CalSetupInfo setup;
    setup.ID = number(rows->value("ID"));
    setup.Stand = number(rows->value("Stand"));
    setup.Position = number(rows->value("MeterPosition"));
    setup.Operator = nameOf(curves, "Operator", rows->value("OperatorID"));
    setup.Fluid = nameOf(curves, "Fluids", rows->value("FluidID"));
    setup.DateTaken = toText(rows->value("DateTaken"));
    const std::string ofSetup = " from CalDataPoint where CalSetupID=" + numberText(setup.ID);
    const auto points = read(curves, "Select JobRecordID" + ofSetup);
    setup.Points = static_cast<std::size_t>(points->recordCount());
    const auto jobs =
        read(curves, "Select DISTINCT JobRecordID" + ofSetup + " ORDER BY JobRecordID ASC");
    if (jobs->recordCount() > 0) setup.JobRecordIDs = rowsAsTexts(*jobs);
    setups.push_back(std::move(setup));
  }
  return setups;
}

void requireCurveTables(const ConnectionPtr& curves) {
  // Over a network each look takes its time.
  const auto* design = dynamic_cast<const TableDesign*>(curves.get());
  if (design != nullptr && design->hasCurveTables()) return;
  for (const SchemaTable& table : curveTables())
    (void)read(curves, "Select TOP 1 * from " + table.Name);
}

void requireWritable(const ConnectionPtr& curves) {
  if (!curves) throw makeError(RunTimeError::noObject);
  // No set-up has this id; the engine takes its lock for writing nevertheless.
  curves->execute("Delete * from CalDataPoint where CalDataPoint.calsetupid=-1");
}

}  // namespace pelmora
