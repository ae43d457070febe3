// SPDX-License-Identifier: MIT
#include "calibration/steps/derivation.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/field_value.h"
#include "store/meter_registry.h"
#include "store/reading.h"

#include <pelmora/calibration/derivation.h>

namespace pelmora::calibration::steps {
namespace {

// Area and volume terms of the rotor housing's thermal expansion, per degree from 70.
constexpr double roshkoAlpha = 0.0000192;
constexpr double strouhalAlpha = 0.0000288;

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

bool moreThanOneJob(const DerivationSource& source) {
  if (source.jobs.empty()) throw makeError(RunTimeError::outOfRange);
  return source.jobs.size() > 1;
}

std::string ofSetup(const DerivationSource& source) {
  return "WHERE (((CalDataPoint.calSetupID)=" + source.calSetupId;
}

std::string ofJob(const DerivationSource& source, std::size_t job) {
  return ofSetup(source) + " and CalDataPoint.JobRecordID=" + source.jobs[job];
}

// Sum and ratio where the rotors ran in jobs of their own: the first job is read twice, row by row.
// The temperature correction comes from a text that is not a number, so the first pair of rows with
// equal V2 ends in a type mismatch, and two sets that end together in a read past the end. Hosts
// rely on the series staying empty with that message.
void derivePerPoint(Connection& connection, const DerivationSource& source) {
  const std::string statement =
      "Select v2,v3,v4,v5,v12 from CalDataPoint " + ofJob(source, 0) + "));";
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

Derivation derivationOf(DerivedSeries series, const DerivationSource& source) {
  switch (series) {
    case DerivedSeries::rotorA: return singleRotor("v3", "v4", ofSetup(source));
    case DerivedSeries::rotorB:
      return moreThanOneJob(source) ? singleRotor("v3", "v4", ofJob(source, 1))
                                    : singleRotor("v20", "v21", ofSetup(source));
    case DerivedSeries::rotorSum: return bothRotors("([v4]/[v3])/([v21]/[v20])", source.calSetupId);
    case DerivedSeries::ratio: break;
  }
  return bothRotors("([v21]/[v20])/([v4]/[v3])", source.calSetupId);
}

bool needsBothRotors(DerivedSeries series) {
  return series == DerivedSeries::rotorSum || series == DerivedSeries::ratio;
}

}  // namespace

void deriveSeries(Connection& connection, DerivedSeries series, const DerivationSource& source,
                  const NameText& SeriesName, std::int32_t MeterID, std::int32_t& SeriesID) {
  if (source.table == "Raw1") SeriesID = findOrAddSeriesRow(connection, SeriesName, MeterID);
  connection.execute("Delete From " + source.table + " where seriesID=" + numberText(SeriesID));
  if (needsBothRotors(series) && moreThanOneJob(source)) {
    derivePerPoint(connection, source);
    return;
  }
  const Derivation derivation = derivationOf(series, source);
  connection.execute("INSERT INTO " + source.table + " ( seriesID,   Roshko,   Strouhal ) SELECT " +
                     numberText(SeriesID) + " AS SeriesID, " + derivation.roshko +
                     derivation.strouhal + "FROM CalDataPoint " + derivation.filter + "));");
}

}  // namespace pelmora::calibration::steps

namespace pelmora::calibration {

DerivedPoint derivedPoint(const Reading& reading) {
  constexpr double reference = 70;
  const double warmer = reading.temperature.value_or(reference) - reference;
  return {reading.frequency / reading.viscosity * (1 + steps::roshkoAlpha * warmer),
          reading.frequency / reading.flow * (1 + steps::strouhalAlpha * warmer)};
}

}  // namespace pelmora::calibration
