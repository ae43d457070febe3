// An automation object whose members are called by name.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/reference.h"

#include <pelmora/error.h>

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

#include <map>
#include <string>
#include <vector>

namespace pelmora::ado {

// A VARIANT that frees what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  explicit Variant(LONG number);
  explicit Variant(const std::string& utf8);
  explicit Variant(IDispatch* object);  // adds a reference
  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(Variant other) noexcept;
  ~Variant() { VariantClear(&value_); }

  [[nodiscard]] VARIANT& get() { return value_; }
  [[nodiscard]] const VARIANT& get() const { return value_; }
  // For the system's functions, which only read it although they do not say so.
  [[nodiscard]] VARIANT* toRead() const { return const_cast<VARIANT*>(&value_); }

 private:
  VARIANT value_;
};

// Errors of every function: Error as the object reports it, completed where it keeps something back
// (completed() of provider_error.h).
class LateBound {
 public:
  LateBound() = default;
  explicit LateBound(os::Reference<IDispatch> object) : object_(std::move(object)) {}
  // A new object of a registered class. Errors: Error 429 if there is none.
  [[nodiscard]] static LateBound create(const wchar_t* className);

  // The connection that is asked about failures, of this object and of those that it gives.
  void isPartOf(const LateBound& connection) { connection_ = connection.object_; }

  Variant call(const wchar_t* method, std::vector<Variant> arguments = {});
  [[nodiscard]] Variant property(const wchar_t* name, std::vector<Variant> arguments = {});
  [[nodiscard]] LONG numberProperty(const wchar_t* name);
  [[nodiscard]] std::string textProperty(const wchar_t* name);
  [[nodiscard]] LateBound objectProperty(const wchar_t* name, std::vector<Variant> arguments = {});
  void setProperty(const wchar_t* name, Variant value);

  [[nodiscard]] IDispatch* get() const { return object_.get(); }

 private:
  DISPID idOf(const wchar_t* member);
  [[nodiscard]] Error failure(HRESULT result, EXCEPINFO& exception, const wchar_t* member) const;
  Variant invoke(const wchar_t* member, WORD flags, std::vector<Variant>& arguments);

  os::Reference<IDispatch> object_;
  os::Reference<IDispatch> connection_;
  std::map<std::wstring, DISPID> ids_;
};

}  // namespace pelmora::ado
