// The properties of _RawData, in their order.
// SPDX-License-Identifier: MIT
#include "bindings/com/arguments.h"
#include "bindings/com/arrays.h"
#include "bindings/com/operation.h"
#include "bindings/com/raw_data_object.h"
#include "bindings/com/records.h"

namespace pelmora::com {

STDMETHODIMP RawDataObject::get_DataFitResultDetails(BSTR* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = textFrom(data_.DataFitResultDetails).release(); });
}
STDMETHODIMP RawDataObject::put_DataFitResultDetails(BSTR value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { data_.DataFitResultDetails = utf8From(value); });
}
STDMETHODIMP RawDataObject::get_NumberOfFittedPoints(short* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = data_.NumberOfFittedPoints; });
}
STDMETHODIMP RawDataObject::put_NumberOfFittedPoints(short value) {
  return operation(*static_cast<_RawData*>(this), [&] { data_.NumberOfFittedPoints = value; });
}
STDMETHODIMP RawDataObject::get_ExternalID(BSTR* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = textFrom(data_.ExternalID).release(); });
}
STDMETHODIMP RawDataObject::put_ExternalID(BSTR value) {
  return operation(*static_cast<_RawData*>(this), [&] { data_.ExternalID = utf8From(value); });
}
STDMETHODIMP RawDataObject::get_Unattended(VARIANT_BOOL* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = flagFrom(data_.Unattended); });
}
STDMETHODIMP RawDataObject::put_Unattended(VARIANT_BOOL value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { data_.Unattended = value != VARIANT_FALSE; });
}
STDMETHODIMP RawDataObject::get_RatioCurve(VARIANT_BOOL* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = flagFrom(data_.RatioCurve); });
}
STDMETHODIMP RawDataObject::put_RatioCurve(VARIANT_BOOL value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { data_.RatioCurve = value != VARIANT_FALSE; });
}
STDMETHODIMP RawDataObject::get_IgnoreResiduals(VARIANT_BOOL* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = flagFrom(data_.IgnoreResiduals); });
}
STDMETHODIMP RawDataObject::put_IgnoreResiduals(VARIANT_BOOL value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { data_.IgnoreResiduals = value != VARIANT_FALSE; });
}
STDMETHODIMP RawDataObject::get_dbDir(::DatabaseLocation* value) {
  return operation(*static_cast<_RawData*>(this), [&] { store(data_.dbDir(), required(value)); });
}
STDMETHODIMP RawDataObject::put_dbDir(::DatabaseLocation* value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { data_.dbDir(locationFrom(required(value))); });
}
STDMETHODIMP RawDataObject::get_LastMergedArray(SAFEARRAY** value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = arrayFrom(data_.LastMergedArray()).release(); });
}
STDMETHODIMP RawDataObject::get_LastFittedArray(SAFEARRAY** value) {
  return operation(*static_cast<_RawData*>(this),
                   [&] { required(value) = arrayFrom(data_.LastFittedArray()).release(); });
}
STDMETHODIMP RawDataObject::get_BandPercent(float* value) {
  return operation(*static_cast<_RawData*>(this), [&] { required(value) = data_.BandPercent(); });
}
STDMETHODIMP RawDataObject::put_BandPercent(float* value) {
  return operation(*static_cast<_RawData*>(this), [&] { data_.BandPercent(required(value)); });
}

}  // namespace pelmora::com
