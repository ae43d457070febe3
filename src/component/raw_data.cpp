// SPDX-License-Identifier: MIT
#include <pelmora/raw_data.h>

#include "base/run_time_error.h"
#include "component/host_link.h"
#include "component/fit_orchestration.h"
#include "component/stored_results.h"
#include "component/result_files.h"
#include "component/import_caldb.h"
#include "component/raw_points.h"
#include "component/stand_copy.h"
#include "component/location.h"
#include "component/lookups.h"
#include "component/operation_context.h"

#include <pelmora/platform.h>

// Operations that run host code get copies of texts and connections: a handler may destroy the
// object whose field was passed, or let go of the connection.
namespace pelmora {
namespace {

SharedState& sharedState() {
  thread_local SharedState state;
  return state;
}

}  // namespace

class RawData::Apartment {
 public:
  explicit Apartment(RawData& object) : link_(std::make_shared<HostLink>(object)) {}
  ~Apartment() { link_->cut(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

  [[nodiscard]] const std::shared_ptr<HostLink>& link() const { return link_; }
  // The context of one operation; it does not need this object any more.
  [[nodiscard]] OperationContext operation() const {
    return {sharedState(), platform(),
            [link = link_](const std::string& message) { link->raiseStatusUpdate(message); }};
  }

 private:
  std::shared_ptr<HostLink> link_;
};

RawData::RawData() : apartment_(std::make_unique<Apartment>(*this)) {
  SharedState& shared = sharedState();
  shared.location = splitLocation(defaultLocation);
  shared.lastResults = {};
}

RawData::~RawData() = default;

DatabaseLocation RawData::dbDir() const { return sharedState().location; }
void RawData::dbDir(const DatabaseLocation& location) { sharedState().location = location; }
DatabaseLocation RawData::dbDirSetByString(const std::string& sPath) {
  return sharedState().location = splitLocation(sPath);
}

std::string RawData::Path() const {
  std::string folder = platform().componentFolder;
  while (folder.size() > 1 && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  return folder;
}

float RawData::BandPercent() const { return apartment_->link()->bandPercent(); }
void RawData::BandPercent(float percent) { apartment_->link()->setBandPercent(percent); }

PointArray RawData::LastMergedArray() const { return sharedState().fitRecord().Merged; }
PointArray RawData::LastFittedArray() const { return sharedState().fitRecord().Fitted; }
bool RawData::LastFittedRatioSort() {
  PointArray& fitted = sharedState().fitRecord().Fitted;
  if (fitted.empty()) throw makeError(RunTimeError::outOfRange);
  quickSortPoints(fitted, 1, 1, 0, pointUpperBound(fitted), false);
  return false;
}
FitOutcome RawData::LastFit() const { return apartment_->link()->lastFit(); }

MeterInfo RawData::findMeterInfo(const std::string& MeterSN, const ConnectionPtr& conn,
                                 std::int16_t ReCalID, const std::string& SeriesName) {
  return pelmora::findMeterInfo(apartment_->operation(), MeterSN, conn, ReCalID, SeriesName);
}
MeterInfo RawData::FindLastCalID(const std::string& MeterSN, const ConnectionPtr& conn) {
  return pelmora::FindLastCalID(apartment_->operation(), MeterSN, conn);
}
ValueTable RawData::Series(const std::string& MeterSN, std::int16_t ReCalID) {
  return listSeries(apartment_->operation(), MeterSN, ReCalID);
}
std::vector<std::string> RawData::MetersAdjusted(const std::string& MeterSN, bool& ArrayIsEmpty,
                                                 std::vector<std::int16_t>& ReCalID) {
  return pelmora::MetersAdjusted(apartment_->operation(), MeterSN, ArrayIsEmpty, ReCalID);
}
std::vector<std::string> RawData::Meters(bool& ArrayIsEmpty) {
  return pelmora::Meters(apartment_->operation(), ArrayIsEmpty);
}
bool RawData::DeleteSeries(const std::string& MeterSN, const std::string& Series,
                           std::int16_t ReCalID) {
  return pelmora::DeleteSeries(apartment_->operation(), MeterSN, Series, ReCalID);
}
std::int32_t RawData::setMeterSN(const std::string& MeterSerialNumber) {
  std::string adjusted;
  return setMeterSN(MeterSerialNumber, adjusted);
}
std::int32_t RawData::setMeterSN(const std::string& MeterSerialNumber,
                                 std::string& MeterSNAdjusted) {
  return pelmora::setMeterSN(apartment_->operation(), std::string(MeterSerialNumber),
                             MeterSNAdjusted);
}
std::vector<std::string> RawData::getJobID(const std::string& MeterSN, std::int16_t ReCalID) {
  return pelmora::getJobID(apartment_->operation(), MeterSN, ReCalID);
}

bool RawData::SetRaw(const std::string& SeriesName, const std::string& MeterSerialNumber,
                     const PointArray& Table, std::int16_t dataSet, bool cleardb,
                     std::int16_t ReCalID) {
  return pelmora::SetRaw(apartment_->operation(), std::string(SeriesName),
                         std::string(MeterSerialNumber), Table, dataSet, cleardb, ReCalID);
}
MeterInfo RawData::GetRaw(const std::string& SeriesName, const std::string& MeterSN,
                          std::int16_t dataSet, const ConnectionPtr& conn, std::int16_t ReCalID) {
  return pelmora::GetRaw(apartment_->operation(), std::string(SeriesName), std::string(MeterSN),
                         dataSet, ConnectionPtr(conn), ReCalID);
}
bool RawData::copyCaldb(std::int32_t CalSetupID, const std::string& JobID_RawA,
                        const std::string& JobID_RawB, const ConnectionPtr& conn_calDB,
                        const ConnectionPtr& Conn_curveDB) {
  return pelmora::copyCaldb(apartment_->operation(), CalSetupID, std::string(JobID_RawA),
                            std::string(JobID_RawB), ConnectionPtr(conn_calDB),
                            ConnectionPtr(Conn_curveDB));
}
MeterInfo RawData::importCaldb(const std::string& MeterSN, const ConnectionPtr& conn_calDB,
                               const std::vector<std::string>& JobID_RawA,
                               const std::vector<std::string>& JobID_RawB,
                               const std::vector<std::string>& FluidName,
                               const std::vector<std::string>& OperatorName,
                               bool Create_RotorA_SumSeries, bool Create_RotorB_SumSeries,
                               bool Create_RotorAB_SumSeries, bool Create_Ratio_Series,
                               std::int16_t StandID, std::int16_t PositionID,
                               const ConnectionPtr& Conn_curveDB, std::int16_t ReCalID) {
  const CalibrationImport wanted{MeterSN,
                                 JobID_RawA,
                                 JobID_RawB,
                                 FluidName,
                                 OperatorName,
                                 Create_RotorA_SumSeries,
                                 Create_RotorB_SumSeries,
                                 Create_RotorAB_SumSeries,
                                 Create_Ratio_Series,
                                 StandID,
                                 PositionID,
                                 ReCalID};
  return pelmora::importCaldb(apartment_->operation(), wanted, ConnectionPtr(conn_calDB),
                              ConnectionPtr(Conn_curveDB));
}

PointArray RawData::determineFittedCurve(const std::string& SeriesName, const std::string& MeterSN,
                                         bool& ArrayIsEmpty, double& Predicted_Xmin,
                                         double& Predicted_Xmax, const std::string& Label_Xaxis,
                                         const std::string& Label_Yaxis, bool bInverted,
                                         std::int16_t ReCalID) {
  const std::shared_ptr<HostLink> link = apartment_->link();
  return pelmora::determineFittedCurve(
      apartment_->operation(), *link,
      {SeriesName, MeterSN, ReCalID, Label_Xaxis, Label_Yaxis, bInverted}, ArrayIsEmpty,
      Predicted_Xmin, Predicted_Xmax);
}
bool RawData::SetFitted(const std::string& SeriesName, const std::string& MeterSerialNumber,
                        const PointArray& arMerged, const PointArray& arFitted,
                        const std::string& Details, bool cleardb, std::int16_t ReCalID) {
  const std::string details = Details;
  return pelmora::SetFitted(apartment_->operation(), std::string(SeriesName),
                            std::string(MeterSerialNumber), {arMerged, arFitted, details}, cleardb,
                            ReCalID);
}
bool RawData::SetLastFitted(bool cleardb) {
  return pelmora::SetLastFitted(apartment_->operation(), cleardb);
}
MeterInfo RawData::getFittedCurve(const std::string& SeriesName, const std::string& MeterSN,
                                  const ConnectionPtr& conn, std::int16_t ReCalID,
                                  bool bDarvellFormat) {
  return pelmora::getFittedCurve(
      apartment_->operation(), {SeriesName, MeterSN, ReCalID, bDarvellFormat}, ConnectionPtr(conn));
}
MeterInfo RawData::GetAllInfo(const std::string& SeriesName, const std::string& MeterSN,
                              const ConnectionPtr& conn, std::int16_t ReCalID,
                              bool bDarvellFormat) {
  return pelmora::GetAllInfo(apartment_->operation(),
                             {SeriesName, MeterSN, ReCalID, bDarvellFormat}, ConnectionPtr(conn));
}
PointArray RawData::readTCresults(const std::string& sResultPath, bool& ArrayIsEmpty) {
  return pelmora::readTCresults(apartment_->operation(), std::string(sResultPath), ArrayIsEmpty);
}
PointArray RawData::ImportCurvedData(const std::string& sFilepath, const std::string& SeriesName,
                                     const std::string& MeterSN, bool& ArrayIsEmpty,
                                     std::int16_t ReCalID) {
  return pelmora::ImportCurvedData(apartment_->operation(), std::string(sFilepath),
                                   std::string(SeriesName), std::string(MeterSN), ArrayIsEmpty,
                                   ReCalID);
}

}  // namespace pelmora
