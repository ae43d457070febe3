// What surrounds every call of the host: lifetime, arithmetic, errors.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/com/host_arithmetic.h"

#include <windows.h>

#include <unknwn.h>

namespace pelmora::com {

// The error in flight as HRESULT, with its source and description in the thread's error object.
// Classic run-time numbers become 0x800A0000 + number, what is an HRESULT already stays. Inside a
// catch block only.
[[nodiscard]] HRESULT reportError() noexcept;

// Runs `body`; the object lives until it ends, whatever a handler of the host releases.
template <class Body>
HRESULT operation(IUnknown& object, Body&& body) noexcept {
  class Keep {
   public:
    explicit Keep(IUnknown& kept) : kept_(kept) { kept_.AddRef(); }
    ~Keep() { kept_.Release(); }
    Keep(const Keep&) = delete;
    Keep& operator=(const Keep&) = delete;

   private:
    IUnknown& kept_;
  };
  const OwnArithmetic arithmetic;
  const Keep keep(object);
  try {
    body();
    return S_OK;
  } catch (...) {
    return reportError();
  }
}

}  // namespace pelmora::com
