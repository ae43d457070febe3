// The object's outgoing side: hosts connect their sinks, events reach every one of them.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/reference.h"

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::com {

// The connection point of __RawData. It lives and dies with the object that owns it.
class EventPoint final : public IConnectionPoint {
 public:
  explicit EventPoint(IConnectionPointContainer& owner) : owner_(owner) {}

  STDMETHODIMP QueryInterface(REFIID identity, void** found) override;
  STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }
  STDMETHODIMP GetConnectionInterface(IID* identity) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

  // Errors: Error if a handler of the host fails; further sinks are then not called.
  void fittingProgress(std::int16_t finishedStep, std::int16_t maxSteps) const;
  void statusUpdate(const std::string& message) const;

 private:
  void raise(DISPID event, VARIANT* arguments, UINT count) const;

  IConnectionPointContainer& owner_;
  std::vector<std::pair<DWORD, os::Reference<IDispatch>>> sinks_;
  DWORD lastCookie_ = 0;
};

class ObjectConnections : public IConnectionPointContainer {
 public:
  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID identity, IConnectionPoint** point) override;

 protected:
  ~ObjectConnections() = default;
  EventPoint events_{*this};
};

}  // namespace pelmora::com
