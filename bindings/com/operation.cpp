// SPDX-License-Identifier: MIT
#include "bindings/com/operation.h"

#include "base/run_time_error.h"
#include "bindings/com/pelmora_automation.h"
#include "bindings/com/text.h"

#include <oleauto.h>

namespace pelmora::com {
namespace {

// Facility of the classic run-time errors.
constexpr std::uint32_t controlErrors = 0x800A0000U;

HRESULT resultOf(std::int32_t number) {
  if (number < 0) return number;
  if (number == 0 || number > 0xFFFF) return E_FAIL;
  return static_cast<HRESULT>(controlErrors + static_cast<std::uint32_t>(number));
}

void tellHost(const Error& error) {
  ICreateErrorInfo* create = nullptr;
  if (FAILED(CreateErrorInfo(&create))) return;
  Text source = textFrom(error.source());
  Text description = textFrom(error.what());
  create->SetGUID(IID__RawData);
  create->SetSource(source.get());
  create->SetDescription(description.get());
  IErrorInfo* info = nullptr;
  if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
    SetErrorInfo(0, info);
    info->Release();
  }
  create->Release();
}

}  // namespace

HRESULT reportError() noexcept {
  try {
    const Error error = currentError();
    tellHost(error);
    return resultOf(error.number());
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace pelmora::com
