// The four entry points of the library, and the class object that makes RawData objects.
// SPDX-License-Identifier: MIT
#include "bindings/com/host_platform.h"
#include "bindings/com/module.h"
#include "bindings/com/operation.h"
#include "bindings/com/raw_data_object.h"
#include "bindings/com/registration.h"

namespace {

namespace com = pelmora::com;

// One for the whole library; it is never freed.
class RawDataClass final : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID identity, void** found) override {
    if (found == nullptr) return E_POINTER;
    *found = nullptr;
    if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, IID_IClassFactory))
      return E_NOINTERFACE;
    AddRef();
    *found = this;
    return S_OK;
  }
  // A class object in use keeps the library loaded, as LockServer does.
  STDMETHODIMP_(ULONG) AddRef() override {
    com::lock(true);
    return 2;
  }
  STDMETHODIMP_(ULONG) Release() override {
    com::lock(false);
    return 1;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID identity, void** created) override {
    if (created == nullptr) return E_POINTER;
    *created = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT found = E_FAIL;
    const HRESULT made = com::operation(*this, [&] {
      com::preparePlatform();
      com::TypeDescription types;
      found = com::load(types);
      if (FAILED(found)) return;
      pelmora::os::Reference<_RawData> object(new com::RawDataObject(std::move(types)));
      found = object->QueryInterface(identity, created);
    });
    return FAILED(made) ? made : found;
  }
  STDMETHODIMP LockServer(BOOL isLocked) override {
    com::lock(isLocked != FALSE);
    return S_OK;
  }
};

RawDataClass& rawDataClass() {
  static RawDataClass& only = *new RawDataClass;
  return only;
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) com::setLibrary(library);
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID wanted, REFIID identity, LPVOID* found) {
  if (found == nullptr) return E_POINTER;
  *found = nullptr;
  if (!IsEqualCLSID(wanted, CLSID_RawData)) return CLASS_E_CLASSNOTAVAILABLE;
  return rawDataClass().QueryInterface(identity, found);
}

STDAPI DllCanUnloadNow() { return com::isInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return com::registerServer(); }

STDAPI DllUnregisterServer() { return com::unregisterServer(); }

}  // extern "C"
