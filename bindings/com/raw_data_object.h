// The object that hosts create: the automation face of pelmora::RawData.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/com/connection_points.h"
#include "bindings/com/invocation.h"
#include "bindings/com/module.h"
#include "bindings/com/pelmora_automation.h"

#include <pelmora/raw_data.h>

#include <atomic>

namespace pelmora::com {

// Each member converts its arguments, calls the member of the same name, and converts the result.
class RawDataObject final : public _RawData,
                            public IProvideClassInfo2,
                            public ISupportErrorInfo,
                            public ObjectConnections {
 public:
  // Starts with one reference.
  explicit RawDataObject(TypeDescription types);
  RawDataObject(const RawDataObject&) = delete;
  RawDataObject& operator=(const RawDataObject&) = delete;

  // IUnknown
  STDMETHODIMP QueryInterface(REFIID identity, void** found) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IDispatch
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** type) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                      DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                      UINT* wrongArgument) override;

  // IProvideClassInfo2, ISupportErrorInfo
  STDMETHODIMP GetClassInfo(ITypeInfo** type) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* identity) override;
  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID identity) override;

  // _RawData
  STDMETHODIMP get_DataFitResultDetails(BSTR* value) override;
  STDMETHODIMP put_DataFitResultDetails(BSTR value) override;
  STDMETHODIMP get_NumberOfFittedPoints(short* value) override;
  STDMETHODIMP put_NumberOfFittedPoints(short value) override;
  STDMETHODIMP get_ExternalID(BSTR* value) override;
  STDMETHODIMP put_ExternalID(BSTR value) override;
  STDMETHODIMP get_Unattended(VARIANT_BOOL* value) override;
  STDMETHODIMP put_Unattended(VARIANT_BOOL value) override;
  STDMETHODIMP get_RatioCurve(VARIANT_BOOL* value) override;
  STDMETHODIMP put_RatioCurve(VARIANT_BOOL value) override;
  STDMETHODIMP get_IgnoreResiduals(VARIANT_BOOL* value) override;
  STDMETHODIMP put_IgnoreResiduals(VARIANT_BOOL value) override;
  STDMETHODIMP get_dbDir(::DatabaseLocation* value) override;
  STDMETHODIMP put_dbDir(::DatabaseLocation* value) override;
  STDMETHODIMP dbDirSetByString(BSTR* sPath, ::DatabaseLocation* result) override;
  STDMETHODIMP findMeterInfo(BSTR* MeterSN, IDispatch** conn, short* ReCalID, BSTR* SeriesName,
                             ::MeterInfo* result) override;
  STDMETHODIMP FindLastCalID(BSTR* MeterSN, IDispatch** conn, ::MeterInfo* result) override;
  STDMETHODIMP get_LastMergedArray(SAFEARRAY** value) override;
  STDMETHODIMP get_LastFittedArray(SAFEARRAY** value) override;
  STDMETHODIMP LastFittedRatioSort(VARIANT_BOOL* result) override;
  STDMETHODIMP Path(BSTR* result) override;
  STDMETHODIMP Series(BSTR* MeterSN, short* ReCalID, SAFEARRAY** result) override;
  STDMETHODIMP MetersAdjusted(BSTR* MeterSN, VARIANT_BOOL* ArrayIsEmpty, SAFEARRAY** ReCalID,
                              SAFEARRAY** result) override;
  STDMETHODIMP Meters(VARIANT_BOOL* ArrayIsEmpty, SAFEARRAY** result) override;
  STDMETHODIMP DeleteSeries(BSTR* MeterSN, BSTR* Series, short* ReCalID,
                            VARIANT_BOOL* result) override;
  STDMETHODIMP get_BandPercent(float* value) override;
  STDMETHODIMP put_BandPercent(float* value) override;
  STDMETHODIMP determineFittedCurve(BSTR* SeriesName, BSTR* MeterSN, VARIANT_BOOL* ArrayIsEmpty,
                                    double* Predicted_Xmin, double* Predicted_Xmax,
                                    BSTR* Label_Xaxis, BSTR* Label_Yaxis, VARIANT_BOOL* bInverted,
                                    short* ReCalID, SAFEARRAY** result) override;
  STDMETHODIMP getFittedCurve(BSTR* SeriesName, BSTR* MeterSN, IDispatch** conn, short* ReCalID,
                              VARIANT_BOOL* bDarvellFormat, ::MeterInfo* result) override;
  STDMETHODIMP ImportCurvedData(BSTR* sFilepath, BSTR* SeriesName, BSTR* MeterSN,
                                VARIANT_BOOL* ArrayIsEmpty, short* ReCalID,
                                SAFEARRAY** result) override;
  STDMETHODIMP readTCresults(BSTR* sResultPath, VARIANT_BOOL* ArrayIsEmpty,
                             SAFEARRAY** result) override;
  STDMETHODIMP SetRaw(BSTR* SeriesName, BSTR* MeterSerialNumber, SAFEARRAY** Table, short* dataSet,
                      VARIANT_BOOL* cleardb, short* ReCalID, VARIANT_BOOL* result) override;
  STDMETHODIMP setMeterSN(BSTR* MeterSerialNumber, BSTR* MeterSNAdjusted, LONG* result) override;
  STDMETHODIMP SetFitted(BSTR* SeriesName, BSTR* MeterSerialNumber, SAFEARRAY** arMerged,
                         SAFEARRAY** arFitted, BSTR* Details, VARIANT_BOOL* cleardb, short* ReCalID,
                         VARIANT_BOOL* result) override;
  STDMETHODIMP SetLastFitted(VARIANT_BOOL* cleardb, VARIANT_BOOL* result) override;
  STDMETHODIMP GetRaw(BSTR* SeriesName, BSTR* MeterSN, short* dataSet, IDispatch** conn,
                      short* ReCalID, ::MeterInfo* result) override;
  STDMETHODIMP GetAllInfo(BSTR* SeriesName, BSTR* MeterSN, IDispatch** conn, short* ReCalID,
                          VARIANT_BOOL* bDarvellFormat, ::MeterInfo* result) override;
  STDMETHODIMP copyCaldb(LONG* CalSetupID, BSTR* JobID_RawA, BSTR* JobID_RawB,
                         IDispatch** conn_calDB, IDispatch** Conn_curveDB,
                         VARIANT_BOOL* result) override;
  STDMETHODIMP importCaldb(BSTR* MeterSN, IDispatch** conn_calDB, SAFEARRAY** JobID_RawA,
                           SAFEARRAY** JobID_RawB, SAFEARRAY** FluidName, SAFEARRAY** OperatorName,
                           VARIANT_BOOL* Create_RotorA_SumSeries,
                           VARIANT_BOOL* Create_RotorB_SumSeries,
                           VARIANT_BOOL* Create_RotorAB_SumSeries,
                           VARIANT_BOOL* Create_Ratio_Series, short* StandID, short* PositionID,
                           IDispatch** Conn_curveDB, short* ReCalID, ::MeterInfo* result) override;
  STDMETHODIMP getJobID(BSTR* MeterSN, short* ReCalID, SAFEARRAY** result) override;

 private:
  ~RawDataObject() = default;

  const InUse inUse_;
  std::atomic<ULONG> references_ = 1;
  TypeDescription types_;
  pelmora::RawData data_;
};

}  // namespace pelmora::com
