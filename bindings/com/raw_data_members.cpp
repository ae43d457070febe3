// The methods of _RawData, in their order. The operation's own names stay the host's.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "bindings/com/arguments.h"
#include "bindings/com/arrays.h"
#include "bindings/com/operation.h"
#include "bindings/com/raw_data_object.h"
#include "bindings/com/records.h"
#include "ui/message_box.h"

#include <algorithm>
#include <initializer_list>

namespace pelmora::com {
namespace {

PointArray pointsOf(SAFEARRAY** argument) {
  return argument == nullptr ? PointArray() : pointsFrom(*argument);
}
std::vector<std::string> textsOf(SAFEARRAY** argument) {
  return argument == nullptr ? std::vector<std::string>() : textsFrom(*argument);
}
bool haveOneDimension(std::initializer_list<SAFEARRAY**> lists) {
  return std::ranges::all_of(lists, [](SAFEARRAY** list) {
    return list == nullptr || *list == nullptr || SafeArrayGetDim(*list) == 1;
  });
}
constexpr short latest = -1;

// The box of an operation's error trap, for an error that shows when a result is handed over.
void showError(const char* operation, RunTimeError number, const std::string& title = {}) {
  standardMessageBox(std::string(operation) + "\r\n" + makeError(number).what(),
                     box_style::critical, title);
}

// How importCaldb ends where a list cannot be read: before anything is registered or copied.
MeterInfo listsOfAnotherShape() {
  showError("Error in modFlow:copyCalData ", RunTimeError::outOfRange, "Error Pelmora");
  MeterInfo nowhere;
  nowhere.Source = -1;
  return nowhere;
}

}  // namespace

STDMETHODIMP RawDataObject::dbDirSetByString(BSTR* sPath, ::DatabaseLocation* result) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { store(data_.dbDirSetByString(textOf(sPath)), required(result)); });
}

STDMETHODIMP RawDataObject::findMeterInfo(BSTR* MeterSN, IDispatch** conn, short* ReCalID,
                                          BSTR* SeriesName, ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const MeterInfo meter = data_.findMeterInfo(textOf(MeterSN), connectionOf(conn),
                                                valueOr(ReCalID, latest), textOf(SeriesName));
    store(meter, required(result), *types_.library);
  });
}
STDMETHODIMP RawDataObject::FindLastCalID(BSTR* MeterSN, IDispatch** conn, ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const MeterInfo meter = data_.FindLastCalID(textOf(MeterSN), connectionOf(conn));
    store(meter, required(result), *types_.library);
  });
}
STDMETHODIMP RawDataObject::LastFittedRatioSort(VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(result) = flagFrom(data_.LastFittedRatioSort()); });
}
STDMETHODIMP RawDataObject::Path(BSTR* result) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(result) = textFrom(data_.Path()).release(); });
}
STDMETHODIMP RawDataObject::Series(BSTR* MeterSN, short* ReCalID, SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    *result = arrayFrom(data_.Series(textOf(MeterSN), valueOr(ReCalID, latest))).release();
  });
}
STDMETHODIMP RawDataObject::MetersAdjusted(BSTR* MeterSN, VARIANT_BOOL* ArrayIsEmpty,
                                           SAFEARRAY** ReCalID, SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    SAFEARRAY*& list = required(result);
    bool isEmpty = flagOf(ArrayIsEmpty);
    std::vector<std::int16_t> numbers;
    const std::vector<std::string> adjusted =
        data_.MetersAdjusted(textOf(MeterSN), isEmpty, numbers);
    if (!isEmpty && ReCalID != nullptr && isFixed(*ReCalID)) {
      showError("Error in RawData:meters", RunTimeError::arrayFixed);
      isEmpty = true;
    }
    writeBack(ArrayIsEmpty, isEmpty);
    if (isEmpty) return;  // both arrays stay as they were
    Array newList = arrayFrom(adjusted);
    Array newNumbers = arrayFrom(numbers);
    list = newList.release();
    if (ReCalID == nullptr) return;
    const Array previous(*ReCalID);
    *ReCalID = newNumbers.release();
  });
}
STDMETHODIMP RawDataObject::Meters(VARIANT_BOOL* ArrayIsEmpty, SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    bool isEmpty = flagOf(ArrayIsEmpty);
    *result = arrayFrom(data_.Meters(isEmpty)).release();
    writeBack(ArrayIsEmpty, isEmpty);
  });
}
STDMETHODIMP RawDataObject::DeleteSeries(BSTR* MeterSN, BSTR* Series, short* ReCalID,
                                         VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = VARIANT_FALSE;
    *result =
        flagFrom(data_.DeleteSeries(textOf(MeterSN), textOf(Series), valueOr(ReCalID, latest)));
  });
}

STDMETHODIMP RawDataObject::determineFittedCurve(BSTR* SeriesName, BSTR* MeterSN,
                                                 VARIANT_BOOL* ArrayIsEmpty, double* Predicted_Xmin,
                                                 double* Predicted_Xmax, BSTR* Label_Xaxis,
                                                 BSTR* Label_Yaxis, VARIANT_BOOL* bInverted,
                                                 short* ReCalID, SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    bool isEmpty = flagOf(ArrayIsEmpty);
    double low = valueOr(Predicted_Xmin, 0.0);
    double high = valueOr(Predicted_Xmax, 0.0);
    const PointArray fitted = data_.determineFittedCurve(
        textOf(SeriesName), textOf(MeterSN), isEmpty, low, high, textOf(Label_Xaxis),
        textOf(Label_Yaxis), flagOf(bInverted), valueOr(ReCalID, latest));
    writeBack(ArrayIsEmpty, isEmpty);
    if (Predicted_Xmin != nullptr) *Predicted_Xmin = low;
    if (Predicted_Xmax != nullptr) *Predicted_Xmax = high;
    *result = arrayFrom(fitted).release();
  });
}
STDMETHODIMP RawDataObject::getFittedCurve(BSTR* SeriesName, BSTR* MeterSN, IDispatch** conn,
                                           short* ReCalID, VARIANT_BOOL* bDarvellFormat,
                                           ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const MeterInfo meter =
        data_.getFittedCurve(textOf(SeriesName), textOf(MeterSN), connectionOf(conn),
                             valueOr(ReCalID, latest), flagOf(bDarvellFormat));
    store(meter, required(result), *types_.library);
  });
}
STDMETHODIMP RawDataObject::ImportCurvedData(BSTR* sFilepath, BSTR* SeriesName, BSTR* MeterSN,
                                             VARIANT_BOOL* ArrayIsEmpty, short* ReCalID,
                                             SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    bool isEmpty = flagOf(ArrayIsEmpty);
    const PointArray points = data_.ImportCurvedData(
        textOf(sFilepath), textOf(SeriesName), textOf(MeterSN), isEmpty, valueOr(ReCalID, latest));
    writeBack(ArrayIsEmpty, isEmpty);
    *result = arrayFrom(points).release();
  });
}
STDMETHODIMP RawDataObject::readTCresults(BSTR* sResultPath, VARIANT_BOOL* ArrayIsEmpty,
                                          SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    bool isEmpty = flagOf(ArrayIsEmpty);
    const PointArray points = data_.readTCresults(textOf(sResultPath), isEmpty);
    writeBack(ArrayIsEmpty, isEmpty);
    *result = arrayFrom(points).release();
  });
}

STDMETHODIMP RawDataObject::SetRaw(BSTR* SeriesName, BSTR* MeterSerialNumber, SAFEARRAY** Table,
                                   short* dataSet, VARIANT_BOOL* cleardb, short* ReCalID,
                                   VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = VARIANT_FALSE;
    *result = flagFrom(data_.SetRaw(textOf(SeriesName), textOf(MeterSerialNumber), pointsOf(Table),
                                    valueOr<short>(dataSet, 0), flagOf(cleardb),
                                    valueOr(ReCalID, latest)));
  });
}
STDMETHODIMP RawDataObject::setMeterSN(BSTR* MeterSerialNumber, BSTR* MeterSNAdjusted,
                                       LONG* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = 0;
    const std::string given = textOf(MeterSNAdjusted);
    std::string adjusted = given;
    *result = data_.setMeterSN(textOf(MeterSerialNumber), adjusted);
    if (MeterSNAdjusted == nullptr || adjusted == given) return;
    const Text previous(*MeterSNAdjusted);
    *MeterSNAdjusted = textFrom(adjusted).release();
  });
}
STDMETHODIMP RawDataObject::SetFitted(BSTR* SeriesName, BSTR* MeterSerialNumber,
                                      SAFEARRAY** arMerged, SAFEARRAY** arFitted, BSTR* Details,
                                      VARIANT_BOOL* cleardb, short* ReCalID, VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = VARIANT_FALSE;
    *result = flagFrom(data_.SetFitted(textOf(SeriesName), textOf(MeterSerialNumber),
                                       pointsOf(arMerged), pointsOf(arFitted), textOf(Details),
                                       flagOf(cleardb), valueOr(ReCalID, latest)));
  });
}
STDMETHODIMP RawDataObject::SetLastFitted(VARIANT_BOOL* cleardb, VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(result) = flagFrom(data_.SetLastFitted(flagOf(cleardb))); });
}
STDMETHODIMP RawDataObject::GetRaw(BSTR* SeriesName, BSTR* MeterSN, short* dataSet,
                                   IDispatch** conn, short* ReCalID, ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const MeterInfo meter =
        data_.GetRaw(textOf(SeriesName), textOf(MeterSN), valueOr<short>(dataSet, 0),
                     connectionOf(conn), valueOr(ReCalID, latest));
    store(meter, required(result), *types_.library);
  });
}
STDMETHODIMP RawDataObject::GetAllInfo(BSTR* SeriesName, BSTR* MeterSN, IDispatch** conn,
                                       short* ReCalID, VARIANT_BOOL* bDarvellFormat,
                                       ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const MeterInfo meter =
        data_.GetAllInfo(textOf(SeriesName), textOf(MeterSN), connectionOf(conn),
                         valueOr(ReCalID, latest), flagOf(bDarvellFormat));
    store(meter, required(result), *types_.library);
  });
}

STDMETHODIMP RawDataObject::copyCaldb(LONG* CalSetupID, BSTR* JobID_RawA, BSTR* JobID_RawB,
                                      IDispatch** conn_calDB, IDispatch** Conn_curveDB,
                                      VARIANT_BOOL* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = VARIANT_FALSE;
    *result = flagFrom(data_.copyCaldb(valueOr<LONG>(CalSetupID, 0), textOf(JobID_RawA),
                                       textOf(JobID_RawB), connectionOf(conn_calDB),
                                       connectionOf(Conn_curveDB)));
  });
}
STDMETHODIMP RawDataObject::importCaldb(
    BSTR* MeterSN, IDispatch** conn_calDB, SAFEARRAY** JobID_RawA, SAFEARRAY** JobID_RawB,
    SAFEARRAY** FluidName, SAFEARRAY** OperatorName, VARIANT_BOOL* Create_RotorA_SumSeries,
    VARIANT_BOOL* Create_RotorB_SumSeries, VARIANT_BOOL* Create_RotorAB_SumSeries,
    VARIANT_BOOL* Create_Ratio_Series, short* StandID, short* PositionID, IDispatch** Conn_curveDB,
    short* ReCalID, ::MeterInfo* result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    const bool canBeRead = haveOneDimension({JobID_RawA, JobID_RawB, FluidName, OperatorName});
    const MeterInfo meter =
        !canBeRead
            ? listsOfAnotherShape()
            : data_.importCaldb(textOf(MeterSN), connectionOf(conn_calDB), textsOf(JobID_RawA),
                                textsOf(JobID_RawB), textsOf(FluidName), textsOf(OperatorName),
                                flagOf(Create_RotorA_SumSeries), flagOf(Create_RotorB_SumSeries),
                                flagOf(Create_RotorAB_SumSeries), flagOf(Create_Ratio_Series),
                                valueOr(StandID, latest), valueOr(PositionID, latest),
                                connectionOf(Conn_curveDB), valueOr(ReCalID, latest));
    store(meter, required(result), *types_.library);
  });
}
STDMETHODIMP RawDataObject::getJobID(BSTR* MeterSN, short* ReCalID, SAFEARRAY** result) {
  return operation(*static_cast<_RawData*>(this), [&] {
    required(result) = nullptr;
    *result = arrayFrom(data_.getJobID(textOf(MeterSN), valueOr(ReCalID, latest))).release();
  });
}

}  // namespace pelmora::com
