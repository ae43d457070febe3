// SPDX-License-Identifier: MIT
#include "component/series_derivation.h"

#include "base/number_text.h"
#include "store/meter_registry.h"
#include "store/field_value.h"
#include "component/operation_connection.h"
#include "store/reading.h"

namespace pelmora {
namespace {

// Area and volume terms of the rotor housing's thermal expansion, per degree from 70.
constexpr double roshkoAlpha = 0.0000192;
constexpr double strouhalAlpha = 0.0000288;

enum SeriesEntry : std::size_t { rotorA = 0, rotorB = 1, sumAB = 2, ratio = 3 };

std::string correction(double alpha) { return "*(1+((" + numberText(alpha) + ")*([v12]-70)))"; }

// The columns of one derived series, and the rows that it takes.
struct Derivation {
  std::string roshko, strouhal, filter;
};

Derivation singleRotor(const std::string& time, const std::string& pulses,
                       const std::string& filter) {
  return {
      "[" + pulses + "]/[" + time + "]/[v5]" + correction(roshkoAlpha) + " AS Roshko, ",
      "([" + pulses + "]/[" + time + "])/([v2]/[v1])" + correction(strouhalAlpha) + " AS Strouhal ",
      filter};
}

Derivation bothRotors(const std::string& strouhal, const std::string& setup) {
  const std::string roshko = "([v4]/[v3]/[v5]" + correction(roshkoAlpha) + ") + ([v21]/[v20]/[v5]" +
                             correction(roshkoAlpha) + ") AS Roshko, ";
  return {roshko, strouhal + " AS Strouhal ", "WHERE (((CalDataPoint.CalSetupID)=" + setup};
}

bool moreThanOneJob(const DerivationTarget& target) {
  if (target.jobs.empty()) throw makeError(RunTimeError::outOfRange);
  return target.jobs.size() > 1;
}

std::string ofSetup(const DerivationTarget& target) {
  return "WHERE (((CalDataPoint.calSetupID)=" + target.calSetupId;
}

std::string ofJob(const DerivationTarget& target, std::size_t job) {
  return ofSetup(target) + " and CalDataPoint.JobRecordID=" + target.jobs[job];
}

// Finds or adds the series row where the table is the first one, and removes the old points.
void beginSeries(Connection& connection, const DerivationTarget& target, MeterInfo& meter,
                 SeriesInfo& series) {
  if (target.table == "Raw1") {
    series.SeriesID =
        findOrAddSeriesRow(connection, NameText::spliced(series.SeriesName), meter.MeterID);
  }
  connection.execute("Delete From " + target.table +
                     " where seriesID=" + numberText(series.SeriesID));
}

void insertDerived(Connection& connection, const DerivationTarget& target, const SeriesInfo& series,
                   const Derivation& derivation) {
  connection.execute("INSERT INTO " + target.table + " ( seriesID,   Roshko,   Strouhal ) SELECT " +
                     numberText(series.SeriesID) + " AS SeriesID, " + derivation.roshko +
                     derivation.strouhal + "FROM CalDataPoint " + derivation.filter + "));");
}

// Sum and ratio where the rotors ran in jobs of their own: the first job is read twice, row by row.
// The temperature correction comes from a text that is no number, so the first pair of rows with
// equal V2 ends in a type mismatch, and two sets that end together in a read past the end. Hosts
// rely on the series staying empty with that message.
void derivePerPoint(Connection& connection, const DerivationTarget& target) {
  const std::string statement =
      "Select v2,v3,v4,v5,v12 from CalDataPoint " + ofJob(target, 0) + "));";
  auto a = readRows(connection, statement);
  auto b = readRows(connection, statement);
  while (!a->atEnd() || b->atEnd()) {
    const Value& volumeA = a->value("v2");
    const Value& volumeB = b->value("v2");
    if (!isNull(volumeA) && !isNull(volumeB) && volumeA == volumeB) {
      for (const char* column : {"v3", "v4", "v5", "v12"}) {
        (void)toDouble(a->value(column));
        (void)toDouble(b->value(column));
      }
      (void)numberFromText(" & dRoVar & ");
    }
    a->moveNext();
    b->moveNext();
  }
}

// Derives one series under the error trap that carries its name.
template <class Body>
void derive(const OperationContext& context, const std::string& name,
            const DerivationTarget& target, MeterInfo& meter, SeriesEntry entry, Body&& body) {
  context.trap("Error in RawData:SeriesViaCaldb_" + name, [&] {
    if (!target.connection) throw makeError(RunTimeError::noObject);
    if (meter.Series.size() <= entry) throw makeError(RunTimeError::outOfRange);
    OperationConnection connection(context, target.connection);
    SeriesInfo& series = meter.Series[entry];
    beginSeries(connection, target, meter, series);
    body(connection, series);
  });
}

void deriveBoth(const OperationContext& context, const std::string& name,
                const DerivationTarget& target, MeterInfo& meter, SeriesEntry entry,
                const std::string& strouhal) {
  derive(context, name, target, meter, entry, [&](auto& connection, const auto& series) {
    if (moreThanOneJob(target)) {
      derivePerPoint(connection, target);
    } else {
      insertDerived(connection, target, series, bothRotors(strouhal, target.calSetupId));
    }
  });
}

}  // namespace

void SeriesViaCaldb_RotorA(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter) {
  derive(context, "RotorA", target, meter, rotorA, [&](auto& connection, const auto& series) {
    insertDerived(connection, target, series, singleRotor("v3", "v4", ofSetup(target)));
  });
}

void SeriesViaCaldb_RotorB(const OperationContext& context, const DerivationTarget& target,
                           MeterInfo& meter) {
  derive(context, "RotorB", target, meter, rotorB, [&](auto& connection, const auto& series) {
    insertDerived(connection, target, series,
                  moreThanOneJob(target) ? singleRotor("v3", "v4", ofJob(target, 1))
                                         : singleRotor("v20", "v21", ofSetup(target)));
  });
}

void SeriesViaCaldb_SumAB(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter) {
  deriveBoth(context, "SumAB", target, meter, sumAB, "([v4]/[v3])/([v21]/[v20])");
}

void SeriesViaCaldb_Ratio(const OperationContext& context, const DerivationTarget& target,
                          MeterInfo& meter) {
  deriveBoth(context, "Ratio", target, meter, ratio, "([v21]/[v20])/([v4]/[v3])");
}

}  // namespace pelmora
