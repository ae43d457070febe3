// An automation object that is called by name, as scripts do.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/bindings/com/hosts/host_support.h"

#include <initializer_list>
#include <utility>
#include <vector>

namespace pelmora::test {

inline VARIANT variantOf(const char* text) {
  VARIANT variant{};
  variant.vt = VT_BSTR;
  const std::string ascii = text;
  variant.bstrVal = SysAllocString(std::wstring(ascii.begin(), ascii.end()).c_str());
  return variant;
}
inline VARIANT variantOf(bool flag) {
  VARIANT variant{};
  variant.vt = VT_BOOL;
  variant.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}
inline VARIANT variantOf(int number) {
  VARIANT variant{};
  variant.vt = VT_I4;
  variant.lVal = number;
  return variant;
}
inline VARIANT variantOf(double number) {
  VARIANT variant{};
  variant.vt = VT_R8;
  variant.dblVal = number;
  return variant;
}
inline VARIANT variantOf(SAFEARRAY* array, VARTYPE element) {
  VARIANT variant{};
  variant.vt = static_cast<VARTYPE>(VT_ARRAY | element);
  variant.parray = array;
  return variant;
}
inline VARIANT referenceTo(VARTYPE type, void* place) {
  VARIANT variant{};
  variant.vt = static_cast<VARTYPE>(VT_BYREF | type);
  variant.byref = place;
  return variant;
}
inline VARIANT leftOut() {
  VARIANT variant{};
  variant.vt = VT_ERROR;
  variant.scode = DISP_E_PARAMNOTFOUND;
  return variant;
}

// What a call left behind. Results stay with the caller.
struct Outcome {
  HRESULT code = S_OK;
  VARIANT result{};
  SCODE error = 0;
  std::string source, description;
  UINT wrongArgument = 99;
};

class LateObject {
 public:
  explicit LateObject(IDispatch* object) : object_(object) {}

  // Arguments in the member's order; their values are freed here.
  Outcome invoke(const wchar_t* member, WORD flags, std::vector<VARIANT> arguments) const {
    Outcome outcome;
    auto* name = const_cast<LPOLESTR>(member);
    DISPID id = DISPID_UNKNOWN;
    outcome.code = object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(outcome.code)) return outcome;
    std::vector<VARIANT> given(arguments.rbegin(), arguments.rend());
    DISPID value = DISPID_PROPERTYPUT;
    const bool isPut = flags == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{given.data(), isPut ? &value : nullptr, static_cast<UINT>(given.size()),
                          isPut ? 1U : 0U};
    EXCEPINFO exception{};
    outcome.code =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                        isPut ? nullptr : &outcome.result, &exception, &outcome.wrongArgument);
    outcome.error = exception.scode;
    outcome.source = Text::narrowOf(exception.bstrSource);
    outcome.description = Text::narrowOf(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    for (VARIANT& argument : given) {
      if (argument.vt != VT_RECORD) VariantClear(&argument);
    }
    return outcome;
  }
  Outcome call(const wchar_t* member, std::vector<VARIANT> arguments = {}) const {
    return invoke(member, DISPATCH_METHOD, std::move(arguments));
  }
  Outcome get(const wchar_t* member) const { return invoke(member, DISPATCH_PROPERTYGET, {}); }
  Outcome put(const wchar_t* member, VARIANT value) const {
    return invoke(member, DISPATCH_PROPERTYPUT, {value});
  }

 private:
  IDispatch* object_;
};

// A field of a record, by name; null where it has none. It points into the record.
template <class T>
T* fieldOf(const VARIANT& record, const wchar_t* name) {
  VARIANT field{};
  void* array = nullptr;
  if (record.vt != VT_RECORD ||
      FAILED(record.pRecInfo->GetFieldNoCopy(record.pvRecord, name, &field, &array)))
    return nullptr;
  return static_cast<T*>(field.byref);
}

}  // namespace pelmora::test
