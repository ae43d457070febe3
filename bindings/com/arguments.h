// What the host's references hold: every argument of a method comes by reference.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/com/text.h"

#include <pelmora/database.h>
#include <pelmora/error.h>

#include <windows.h>

#include <string>

namespace pelmora::com {

// A null reference is an argument that the host left out.
template <class T>
[[nodiscard]] T valueOr(const T* argument, T absent) {
  return argument == nullptr ? absent : *argument;
}
[[nodiscard]] inline std::string textOf(const BSTR* argument) {
  return argument == nullptr ? std::string() : utf8From(*argument);
}
[[nodiscard]] inline bool flagOf(const VARIANT_BOOL* argument) {
  return valueOr<VARIANT_BOOL>(argument, VARIANT_FALSE) != VARIANT_FALSE;
}
[[nodiscard]] inline VARIANT_BOOL flagFrom(bool flag) {
  return flag ? VARIANT_TRUE : VARIANT_FALSE;
}
inline void writeBack(VARIANT_BOOL* argument, bool flag) {
  if (argument != nullptr) *argument = flagFrom(flag);
}
// Null where the host passed none or Nothing.
[[nodiscard]] ConnectionPtr connectionOf(IDispatch** argument);

// Where the result goes. Errors: E_POINTER.
template <class T>
[[nodiscard]] T& required(T* result) {
  if (result == nullptr) throw Error(E_POINTER, "Pelmora", "The reference for the result is null");
  return *result;
}

}  // namespace pelmora::com
