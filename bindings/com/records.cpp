// SPDX-License-Identifier: MIT
#include "bindings/com/records.h"

#include "base/run_time_error.h"
#include "bindings/com/arrays.h"
#include "bindings/com/text.h"

#include <algorithm>
#include <array>
#include <new>

namespace pelmora::com {
namespace {

void store(const FixedCurve40& curve, ::FixedCurve40& to) {
  std::ranges::copy(curve.first, to.First);
  std::ranges::copy(curve.second, to.Second);
}

void store(const SeriesInfo& series, ::SeriesInfo& to) {
  to.SeriesName = textFrom(series.SeriesName).release();
  to.SeriesID = series.SeriesID;
  for (std::size_t part = 0; part < series.Raw.size(); ++part) {
    to.Raw[part].Points = arrayFrom(series.Raw[part].Points).release();
  }
  to.Merged = arrayFrom(series.Merged).release();
  to.Fitted = arrayFrom(series.Fitted).release();
  store(series.RoshkoFirst, to.RoshkoFirst);
  store(series.StrouhalFirst, to.StrouhalFirst);
  to.Summary = textFrom(series.Summary).release();
}

[[noreturn]] void fail(HRESULT code, const char* what) { throw Error(code, "Pelmora", what); }

// Arrays of records carry the description of their record.
Array newSeriesArray(std::size_t size, ITypeLib& typeLibrary) {
  ITypeInfo* type = nullptr;
  HRESULT result = typeLibrary.GetTypeInfoOfGuid(GUID_SeriesInfo, &type);
  if (FAILED(result)) fail(result, "The type library has no SeriesInfo");
  IRecordInfo* record = nullptr;
  result = GetRecordInfoFromTypeInfo(type, &record);
  type->Release();
  if (FAILED(result)) fail(result, "The type library's SeriesInfo is no record");
  SAFEARRAYBOUND bound{static_cast<ULONG>(size), 0};
  Array array(SafeArrayCreateEx(VT_RECORD, 1, &bound, record));
  record->Release();
  if (!array) throw std::bad_alloc();
  return array;
}

}  // namespace

void store(const DatabaseLocation& location, ::DatabaseLocation& to) {
  to = {};
  to.FullPath = textFrom(location.FullPath).release();
  to.Folder = textFrom(location.Folder).release();
  to.FileName = textFrom(location.FileName).release();
  to.Drive = textFrom(location.Drive).release();
  to.Extension = textFrom(location.Extension).release();
}

void store(const MeterInfo& meter, ::MeterInfo& to, ITypeLib& typeLibrary) {
  to = {};
  to.Source = meter.Source;
  to.MeterID = meter.MeterID;
  to.ReCalID = meter.ReCalID;
  to.SerialNumber = textFrom(meter.SerialNumber).release();
  to.SerialNumberAdjusted = textFrom(meter.SerialNumberAdjusted).release();
  if (meter.Series.empty()) return;
  Array series = newSeriesArray(meter.Series.size(), typeLibrary);
  auto* entries = static_cast<::SeriesInfo*>(series->pvData);
  for (std::size_t i = 0; i < meter.Series.size(); ++i) store(meter.Series[i], entries[i]);
  to.Series = series.release();
}

DatabaseLocation locationFrom(const ::DatabaseLocation& location) {
  return {utf8From(location.FullPath), utf8From(location.Folder), utf8From(location.FileName),
          utf8From(location.Drive), utf8From(location.Extension)};
}

}  // namespace pelmora::com
