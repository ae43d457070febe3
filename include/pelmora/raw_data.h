// The component's one class, which keeps, derives, fits and reports calibration curves.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pelmora {

// Threads:  an object belongs to the thread that created it.
//           All objects of one thread share the database location and the last results.
//           Creating an object resets both.
// Errors:   trapped. An operation that fails shows "Error in ..." through platform().messageBox and
//           returns whatever part of its result is filled. Only LastFittedRatioSort throws.
// Databases: given a connection, an operation uses it and leaves it open; without one, it opens
//           the database at dbDir() and closes it again.
// Names:    serial numbers, series names, fluids, operators and job identities become part of
//           statements without being escaped: an apostrophe breaks the statement, and a name made
//           for it changes what is found or deleted. Check what a user typed before passing it on.
// ReCalID:  -1 means the latest calibration of the meter.
//
//     pelmora::RawData data;
//     data.dbDirSetByString("curves.db");
//     data.setMeterSN("4711");
//     data.SetRaw("Rotor A", "4711", points, 0, false);
class PELMORA_API RawData {
 public:
  RawData();
  ~RawData();
  RawData(const RawData&) = delete;
  RawData& operator=(const RawData&) = delete;

  std::string DataFitResultDetails;
  std::int16_t NumberOfFittedPoints = 40;
  std::string ExternalID;
  bool Unattended = false, RatioCurve = false, IgnoreResiduals = false;

  // Progress text for the operator.
  std::function<void(const std::string& sMessage)> StatusUpdate;
  // The fit run has finished step finishedStep of maxSteps.
  std::function<void(std::int16_t finishedStep, std::int16_t maxSteps)> FittingProgress;

  // The database location, set whole or from a path, and the component's own folder.
  [[nodiscard]] DatabaseLocation dbDir() const;
  void dbDir(const DatabaseLocation& location);
  DatabaseLocation dbDirSetByString(const std::string& sPath);
  [[nodiscard]] std::string Path() const;

  // Band of the band test in per cent; 0 accepts exact points only.
  [[nodiscard]] float BandPercent() const;
  void BandPercent(float percent);

  // Copies of the points of the last fit; no bounds if there was none.
  [[nodiscard]] PointArray LastMergedArray() const;
  [[nodiscard]] PointArray LastFittedArray() const;
  // Sorts the last fitted points by falling Strouhal. Always returns false.
  // Errors: Error 9 if the array has no bounds.
  bool LastFittedRatioSort();
  // How each equation did in this object's last fit; no equations if it has not fitted.
  [[nodiscard]] FitOutcome LastFit() const;

  // Look-ups.
  MeterInfo findMeterInfo(const std::string& MeterSN, const ConnectionPtr& conn = {},
                          std::int16_t ReCalID = -1, const std::string& SeriesName = {});
  MeterInfo FindLastCalID(const std::string& MeterSN, const ConnectionPtr& conn = {});
  // Column 0 serial number, column 1 series name.
  ValueTable Series(const std::string& MeterSN, std::int16_t ReCalID = -1);
  std::vector<std::string> MetersAdjusted(const std::string& MeterSN, bool& ArrayIsEmpty,
                                          std::vector<std::int16_t>& ReCalID);
  std::vector<std::string> Meters(bool& ArrayIsEmpty);
  bool DeleteSeries(const std::string& MeterSN, const std::string& Series,
                    std::int16_t ReCalID = -1);
  // Registers a new calibration of a meter; returns its id, 0 on failure. An empty adjusted serial
  // number becomes the serial number.
  std::int32_t setMeterSN(const std::string& MeterSerialNumber);
  std::int32_t setMeterSN(const std::string& MeterSerialNumber, std::string& MeterSNAdjusted);
  std::vector<std::string> getJobID(const std::string& MeterSN, std::int16_t ReCalID = -1);

  // Raw points. SetRaw counts raw parts from 0, GetRaw from 1: dataSet 0 writes what 1 reads.
  bool SetRaw(const std::string& SeriesName, const std::string& MeterSerialNumber,
              const PointArray& Table, std::int16_t dataSet, bool cleardb,
              std::int16_t ReCalID = -1);
  MeterInfo GetRaw(const std::string& SeriesName, const std::string& MeterSN, std::int16_t dataSet,
                   const ConnectionPtr& conn = {}, std::int16_t ReCalID = -1);

  // Stand data. copyCaldb closes the stand's connection.
  bool copyCaldb(std::int32_t CalSetupID, const std::string& JobID_RawA,
                 const std::string& JobID_RawB, const ConnectionPtr& conn_calDB,
                 const ConnectionPtr& Conn_curveDB);
  MeterInfo importCaldb(const std::string& MeterSN, const ConnectionPtr& conn_calDB,
                        const std::vector<std::string>& JobID_RawA,
                        const std::vector<std::string>& JobID_RawB,
                        const std::vector<std::string>& FluidName,
                        const std::vector<std::string>& OperatorName,
                        bool Create_RotorA_SumSeries = false, bool Create_RotorB_SumSeries = false,
                        bool Create_RotorAB_SumSeries = false, bool Create_Ratio_Series = false,
                        std::int16_t StandID = -1, std::int16_t PositionID = -1,
                        const ConnectionPtr& Conn_curveDB = {}, std::int16_t ReCalID = -1);

  // The fit and its results.
  PointArray determineFittedCurve(const std::string& SeriesName, const std::string& MeterSN,
                                  bool& ArrayIsEmpty, double& Predicted_Xmin,
                                  double& Predicted_Xmax, const std::string& Label_Xaxis,
                                  const std::string& Label_Yaxis, bool bInverted,
                                  std::int16_t ReCalID = -1);
  // True when everything asked for was stored.
  bool SetFitted(const std::string& SeriesName, const std::string& MeterSerialNumber,
                 const PointArray& arMerged, const PointArray& arFitted, const std::string& Details,
                 bool cleardb, std::int16_t ReCalID = -1);
  bool SetLastFitted(bool cleardb);
  MeterInfo getFittedCurve(const std::string& SeriesName, const std::string& MeterSN,
                           const ConnectionPtr& conn = {}, std::int16_t ReCalID = -1,
                           bool bDarvellFormat = false);
  MeterInfo GetAllInfo(const std::string& SeriesName, const std::string& MeterSN,
                       const ConnectionPtr& conn = {}, std::int16_t ReCalID = -1,
                       bool bDarvellFormat = false);

  // Points fitted by the outside program TableCurve. Once read, a result file is renamed: ".sav" is
  // appended.
  PointArray readTCresults(const std::string& sResultPath, bool& ArrayIsEmpty);
  PointArray ImportCurvedData(const std::string& sFilepath, const std::string& SeriesName,
                              const std::string& MeterSN, bool& ArrayIsEmpty,
                              std::int16_t ReCalID = -1);

 private:
  class Apartment;
  std::unique_ptr<Apartment> apartment_;
};

}  // namespace pelmora
