// One argument of a late-bound call: what the host gave, made into what the member takes, and back.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/reference.h"

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

namespace pelmora::com {

// A type as members use it: a plain automation type, VT_ARRAY | type, or VT_RECORD.
struct ArgumentType {
  VARTYPE type = VT_EMPTY;
  bool isReference = false;
  os::Reference<IRecordInfo> record;
};

// Errors: DISP_E_BADVARTYPE for what no member uses.
[[nodiscard]] HRESULT describe(ITypeInfo& owner, const TYPEDESC& type, ArgumentType& described);

class ArgumentSlot {
 public:
  ArgumentSlot() = default;
  ~ArgumentSlot();
  ArgumentSlot(const ArgumentSlot&) = delete;
  ArgumentSlot& operator=(const ArgumentSlot&) = delete;

  // Takes the host's argument: as it is where the type fits, else converted to it. `given` must
  // live until the call is over. Errors: DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW.
  [[nodiscard]] HRESULT take(const ArgumentType& type, VARIANT& given, LCID locale);
  // An optional argument that was left out: its default, or nothing at all.
  [[nodiscard]] HRESULT leaveOut(const ArgumentType& type, const PARAMDESC& parameter);
  // Room for a result.
  [[nodiscard]] HRESULT makeRoom(const ArgumentType& type);

  // The argument as DispCallFunc takes it.
  [[nodiscard]] VARIANT& forCall() { return call_; }
  // Hands back what the member changed.
  void writeBack(LCID locale);
  // Moves the result out.
  void moveTo(VARIANT& result);

 private:
  [[nodiscard]] HRESULT convert(VARIANT& from, LCID locale);
  [[nodiscard]] HRESULT convertArray(VARIANT& from, LCID locale);
  [[nodiscard]] HRESULT takeRecord(VARIANT& from);
  [[nodiscard]] bool isChanged() const;
  void pointCall(void* place);
  void lockAs(const VARIANT& theirs);

  ArgumentType type_;
  VARIANT value_{};            // converted value or room for the result; a record is not kept here
  VARIANT original_{};         // value_ before the call
  VARIANT call_{};             // not owned
  void* record_ = nullptr;     // room for a record result
  VARIANT* holder_ = nullptr;  // the host's variant that gets changes
  VARIANT* typedReference_ = nullptr;  // the host's reference to another type
  bool isLocked_ = false;              // value_ is an array that the host keeps where it is
};

}  // namespace pelmora::com
