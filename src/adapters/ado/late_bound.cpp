// SPDX-License-Identifier: MIT
#include "adapters/ado/late_bound.h"

#include "adapters/ado/provider_error.h"
#include "adapters/os/automation_error.h"
#include "adapters/os/wide_text.h"
#include "base/run_time_error.h"

#include <algorithm>
#include <new>
#include <utility>

namespace pelmora::ado {
namespace {

// The value as another type. Errors: Error 13.
Variant changed(const Variant& value, VARTYPE type) {
  Variant result;
  if (FAILED(VariantChangeType(&result.get(), value.toRead(), 0, type))) {
    throw makeError(RunTimeError::typeMismatch);
  }
  return result;
}

}  // namespace

Variant::Variant(LONG number) : Variant() {
  value_.vt = VT_I4;
  value_.lVal = number;
}

Variant::Variant(const std::string& utf8) : Variant() {
  const std::wstring wide = os::wideText(utf8);
  value_.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (value_.bstrVal == nullptr) throw std::bad_alloc();
  value_.vt = VT_BSTR;
}

Variant::Variant(IDispatch* object) : Variant() {
  value_.pdispVal = os::Reference<IDispatch>::to(object).release();
  value_.vt = VT_DISPATCH;
}

Variant::Variant(const Variant& other) : Variant() {
  if (FAILED(VariantCopy(&value_, other.toRead()))) throw std::bad_alloc();
}

Variant::Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }

Variant& Variant::operator=(Variant other) noexcept {
  std::swap(value_, other.value_);
  return *this;
}

LateBound LateBound::create(const wchar_t* className) {
  CLSID identity{};
  os::Reference<IDispatch> object;
  HRESULT result = CLSIDFromProgID(className, &identity);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(identity, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(object.receive()));
  }
  if (FAILED(result)) {
    throw Error(static_cast<std::int32_t>(RunTimeError::noEngine), "Pelmora",
                "ActiveX component can't create object '" + os::utf8Text(className) +
                    "'. Install the data access components, or pass an open connection.");
  }
  return LateBound(std::move(object));
}

DISPID LateBound::idOf(const wchar_t* member) {
  if (const auto known = ids_.find(member); known != ids_.end()) return known->second;
  auto* name = const_cast<LPOLESTR>(member);
  DISPID id = DISPID_UNKNOWN;
  const HRESULT result = object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
  EXCEPINFO none{};
  if (FAILED(result)) throw failure(result, none, member);
  return ids_[member] = id;
}

Error LateBound::failure(HRESULT result, EXCEPINFO& exception, const wchar_t* member) const {
  const Error told = os::automationError(result, exception, "");
  const bool isWhole = told.number() != 0 && told.what()[0] != '\0';
  return isWhole ? told : completed(told, connection_.get(), member);
}

Variant LateBound::invoke(const wchar_t* member, WORD flags, std::vector<Variant>& arguments) {
  if (!object_) throw makeError(RunTimeError::noObject);
  const DISPID id = idOf(member);
  std::ranges::reverse(arguments);  // automation wants the last argument first
  std::vector<VARIANT> given;
  for (Variant& argument : arguments) given.push_back(argument.get());
  const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPID value = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{given.data(), isPut ? &value : nullptr, static_cast<UINT>(given.size()),
                        isPut ? 1U : 0U};
  Variant result;
  EXCEPINFO exception{};
  UINT wrong = 0;
  const HRESULT outcome = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                          isPut ? nullptr : &result.get(), &exception, &wrong);
  if (FAILED(outcome)) throw failure(outcome, exception, member);
  return result;
}

Variant LateBound::call(const wchar_t* method, std::vector<Variant> arguments) {
  return invoke(method, DISPATCH_METHOD, arguments);
}

Variant LateBound::property(const wchar_t* name, std::vector<Variant> arguments) {
  return invoke(name, DISPATCH_PROPERTYGET, arguments);
}

LONG LateBound::numberProperty(const wchar_t* name) {
  return changed(property(name), VT_I4).get().lVal;
}

std::string LateBound::textProperty(const wchar_t* name) {
  const Variant text = changed(property(name), VT_BSTR);
  return os::utf8Text({text.get().bstrVal, SysStringLen(text.get().bstrVal)});
}

LateBound LateBound::objectProperty(const wchar_t* name, std::vector<Variant> arguments) {
  const Variant object = changed(property(name, std::move(arguments)), VT_DISPATCH);
  LateBound given(os::Reference<IDispatch>::to(object.get().pdispVal));
  given.connection_ = connection_;
  return given;
}

void LateBound::setProperty(const wchar_t* name, Variant value) {
  std::vector<Variant> arguments;
  arguments.push_back(std::move(value));
  invoke(name, DISPATCH_PROPERTYPUT, arguments);
}

}  // namespace pelmora::ado
