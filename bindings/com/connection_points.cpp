// SPDX-License-Identifier: MIT
#include "bindings/com/connection_points.h"

#include "adapters/os/automation_error.h"
#include "bindings/com/enumeration.h"
#include "bindings/com/host_arithmetic.h"
#include "bindings/com/pelmora_automation.h"
#include "bindings/com/text.h"

#include <olectl.h>

#include <algorithm>

namespace pelmora::com {
namespace {

struct KeptPoint {
  os::Reference<IConnectionPoint> point;
  [[nodiscard]] IConnectionPoint* handOut() const { return os::Reference(point).release(); }
};

struct KeptSink {
  DWORD cookie;
  os::Reference<IDispatch> sink;
  [[nodiscard]] CONNECTDATA handOut() const { return {os::Reference(sink).release(), cookie}; }
};

// Sinks need not handle an event, and a sink whose host is gone is not the operation's trouble.
bool isUnheard(HRESULT result) {
  return result == DISP_E_MEMBERNOTFOUND || result == E_NOTIMPL || result == RPC_E_DISCONNECTED ||
         result == RPC_E_SERVER_DIED || result == CO_E_OBJNOTCONNECTED;
}

}  // namespace

STDMETHODIMP EventPoint::QueryInterface(REFIID identity, void** found) {
  if (found == nullptr) return E_POINTER;
  *found = nullptr;
  if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, IID_IConnectionPoint))
    return E_NOINTERFACE;
  AddRef();
  *found = static_cast<IConnectionPoint*>(this);
  return S_OK;
}

STDMETHODIMP EventPoint::GetConnectionInterface(IID* identity) {
  if (identity == nullptr) return E_POINTER;
  *identity = DIID___RawData;
  return S_OK;
}

STDMETHODIMP EventPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  owner_.AddRef();
  *container = &owner_;
  return S_OK;
}

STDMETHODIMP EventPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  os::Reference<IDispatch> handler;
  const auto place = reinterpret_cast<void**>(handler.receive());
  if (FAILED(sink->QueryInterface(DIID___RawData, place)) &&
      FAILED(sink->QueryInterface(IID_IDispatch, place))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  try {
    sinks_.emplace_back(lastCookie_ + 1, std::move(handler));
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  *cookie = ++lastCookie_;
  return S_OK;
}

STDMETHODIMP EventPoint::Unadvise(DWORD cookie) {
  const auto found =
      std::ranges::find_if(sinks_, [&](const auto& sink) { return sink.first == cookie; });
  if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
  const os::Reference<IDispatch> handler =
      std::move(found->second);  // let go after the list is in order
  sinks_.erase(found);
  return S_OK;
}

STDMETHODIMP EventPoint::EnumConnections(IEnumConnections** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  try {
    std::vector<KeptSink> kept;
    for (const auto& [cookie, sink] : sinks_) kept.push_back({cookie, sink});
    *connections = new Enumeration<IEnumConnections, CONNECTDATA, KeptSink>(IID_IEnumConnections,
                                                                            std::move(kept));
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

void EventPoint::raise(DISPID event, VARIANT* arguments, UINT count) const {
  const auto sinks = sinks_;  // a handler may disconnect itself or another one
  const HostTurn hostTurn;
  for (const auto& [cookie, sink] : sinks) {
    DISPPARAMS parameters{arguments, nullptr, count, 0};
    EXCEPINFO exception{};
    UINT wrong = 0;
    const HRESULT result = sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                        &parameters, nullptr, &exception, &wrong);
    if (FAILED(result) && !isUnheard(result))
      throw os::automationError(result, exception, "An event handler of the host failed");
  }
}

void EventPoint::fittingProgress(std::int16_t finishedStep, std::int16_t maxSteps) const {
  VARIANT arguments[2]{};  // last argument first
  arguments[0].vt = arguments[1].vt = VT_BYREF | VT_I2;
  arguments[0].piVal = &maxSteps;
  arguments[1].piVal = &finishedStep;
  raise(1, arguments, 2);
}

void EventPoint::statusUpdate(const std::string& message) const {
  BSTR text = textFrom(message).release();
  VARIANT argument{};
  argument.vt = VT_BYREF | VT_BSTR;
  argument.pbstrVal = &text;
  try {
    raise(2, &argument, 1);
  } catch (...) {
    SysFreeString(text);
    throw;
  }
  SysFreeString(text);  // the handler may have put another one there
}

STDMETHODIMP ObjectConnections::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  try {
    std::vector<KeptPoint> kept{{os::Reference<IConnectionPoint>::to(&events_)}};
    *points = new Enumeration<IEnumConnectionPoints, IConnectionPoint*, KeptPoint>(
        IID_IEnumConnectionPoints, std::move(kept));
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

STDMETHODIMP ObjectConnections::FindConnectionPoint(REFIID identity, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (!IsEqualIID(identity, DIID___RawData)) return CONNECT_E_NOCONNECTION;
  *point = &events_;
  events_.AddRef();
  return S_OK;
}

}  // namespace pelmora::com
