// What the Windows hosts share: texts, arrays, and a sink that counts events.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/bindings/com/hosts/main_job.h"

#include "bindings/com/pelmora_automation.h"

#include <windows.h>

#include <oleauto.h>

#include <functional>
#include <stdexcept>
#include <string>

namespace pelmora::test {

// A text for one call.
class Text {
 public:
  explicit Text(const std::string& ascii)
      : text_(SysAllocString(std::wstring(ascii.begin(), ascii.end()).c_str())) {}
  Text() = default;
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  operator BSTR*() { return &text_; }
  [[nodiscard]] BSTR get() const { return text_; }
  [[nodiscard]] std::string narrow() const { return narrowOf(text_); }
  static std::string narrowOf(BSTR text) {
    std::string narrow;
    for (UINT i = 0; i < SysStringLen(text); ++i) narrow += static_cast<char>(text[i]);
    return narrow;
  }

 private:
  BSTR text_ = nullptr;
};

inline void check(HRESULT result, const char* what) {
  if (SUCCEEDED(result)) return;
  throw std::runtime_error(std::string(what) + " failed with " +
                           std::to_string(static_cast<unsigned long>(result)));
}

inline SAFEARRAY* arrayOf(const Points& points) {
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(points.size()), 0}, {2, 0}};
  SAFEARRAY* array = SafeArrayCreate(VT_R8, 2, bounds);
  for (std::size_t i = 0; i < points.size(); ++i) {
    LONG at[2] = {static_cast<LONG>(i), 0};
    double x = points[i].first, y = points[i].second;
    SafeArrayPutElement(array, at, &x);
    at[1] = 1;
    SafeArrayPutElement(array, at, &y);
  }
  return array;
}

inline Points pointsOf(SAFEARRAY* array) {
  Points points;
  if (array == nullptr) return points;
  LONG high = -1;
  SafeArrayGetUBound(array, 1, &high);
  for (LONG i = 0; i <= high; ++i) {
    LONG at[2] = {i, 0};
    double x = 0, y = 0;
    SafeArrayGetElement(array, at, &x);
    at[1] = 1;
    SafeArrayGetElement(array, at, &y);
    points.emplace_back(x, y);
  }
  return points;
}

inline std::vector<std::string> textsOf(SAFEARRAY* array) {
  std::vector<std::string> texts;
  LONG high = -1;
  if (array != nullptr) SafeArrayGetUBound(array, 1, &high);
  for (LONG i = 0; i <= high; ++i) {
    BSTR text = nullptr;
    SafeArrayGetElement(array, &i, &text);
    texts.push_back(Text::narrowOf(text));
    SysFreeString(text);
  }
  return texts;
}

// A sink on the stack: disconnect it before it goes.
class Sink : public IDispatch {
 public:
  std::function<HRESULT(DISPID event, DISPPARAMS& arguments, EXCEPINFO* exception)> handler;

  STDMETHODIMP QueryInterface(REFIID identity, void** found) override {
    *found = nullptr;
    if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, IID_IDispatch) &&
        !IsEqualIID(identity, DIID___RawData)) {
      return E_NOINTERFACE;
    }
    AddRef();
    *found = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                      EXCEPINFO* exception, UINT*) override {
    return handler ? handler(event, *arguments, exception) : S_OK;
  }
  ULONG references = 1;
};

// Connects a sink as long as it lives.
class Connected {
 public:
  Connected(IUnknown* object, Sink& sink) {
    IConnectionPointContainer* container = nullptr;
    check(
        object->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)),
        "container");
    check(container->FindConnectionPoint(DIID___RawData, &point_), "connection point");
    container->Release();
    check(point_->Advise(&sink, &cookie_), "Advise");
  }
  ~Connected() {
    point_->Unadvise(cookie_);
    point_->Release();
  }
  Connected(const Connected&) = delete;
  Connected& operator=(const Connected&) = delete;

 private:
  IConnectionPoint* point_ = nullptr;
  DWORD cookie_ = 0;
};

inline void countEvents(Sink& sink, MainJobResult& result) {
  sink.handler = [&result](DISPID event, DISPPARAMS& arguments, EXCEPINFO*) {
    if (event == 2) ++result.statusUpdates;
    if (event == 1) {
      ++result.progressSteps;
      result.lastStep = *arguments.rgvarg[1].piVal;
      result.maxSteps = *arguments.rgvarg[0].piVal;
    }
    return S_OK;
  };
}

}  // namespace pelmora::test
