// SPDX-License-Identifier: MIT
#include "bindings/com/raw_data_object.h"

#include "bindings/com/operation.h"

#include <utility>

namespace pelmora::com {

RawDataObject::RawDataObject(TypeDescription types) : types_(std::move(types)) {
  data_.FittingProgress = [this](std::int16_t finishedStep, std::int16_t maxSteps) {
    events_.fittingProgress(finishedStep, maxSteps);
  };
  data_.StatusUpdate = [this](const std::string& message) { events_.statusUpdate(message); };
}

STDMETHODIMP RawDataObject::QueryInterface(REFIID identity, void** found) {
  if (found == nullptr) return E_POINTER;
  *found = nullptr;
  if (IsEqualIID(identity, IID_IUnknown) || IsEqualIID(identity, IID_IDispatch) ||
      IsEqualIID(identity, IID__RawData)) {
    *found = static_cast<_RawData*>(this);
  } else if (IsEqualIID(identity, IID_IConnectionPointContainer)) {
    *found = static_cast<IConnectionPointContainer*>(this);
  } else if (IsEqualIID(identity, IID_IProvideClassInfo) ||
             IsEqualIID(identity, IID_IProvideClassInfo2)) {
    *found = static_cast<IProvideClassInfo2*>(this);
  } else if (IsEqualIID(identity, IID_ISupportErrorInfo)) {
    *found = static_cast<ISupportErrorInfo*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) RawDataObject::AddRef() { return ++references_; }
STDMETHODIMP_(ULONG) RawDataObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP RawDataObject::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP RawDataObject::GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** type) {
  if (type == nullptr) return E_POINTER;
  *type = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  *type = os::Reference(types_.dispatch).release();
  return S_OK;
}

STDMETHODIMP RawDataObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count,
                                          LCID /*locale*/, DISPID* ids) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  return DispGetIDsOfNames(types_.dispatch.get(), names, count, ids);
}

STDMETHODIMP RawDataObject::Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                   DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                   UINT* wrongArgument) {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (arguments == nullptr) return E_POINTER;
  HRESULT outcome = S_OK;
  const HRESULT trouble = operation(*static_cast<_RawData*>(this), [&] {
    outcome = invoke(*types_.vtable, static_cast<_RawData*>(this),
                     {member, flags, locale, arguments, result, exception, wrongArgument});
  });
  return FAILED(trouble) ? trouble : outcome;
}

STDMETHODIMP RawDataObject::GetClassInfo(ITypeInfo** type) {
  if (type == nullptr) return E_POINTER;
  *type = os::Reference(types_.classInfo).release();
  return S_OK;
}

STDMETHODIMP RawDataObject::GetGUID(DWORD kind, GUID* identity) {
  if (identity == nullptr) return E_POINTER;
  *identity = GUID_NULL;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
  *identity = DIID___RawData;
  return S_OK;
}

STDMETHODIMP RawDataObject::InterfaceSupportsErrorInfo(REFIID identity) {
  return IsEqualIID(identity, IID__RawData) ? S_OK : S_FALSE;
}

}  // namespace pelmora::com
