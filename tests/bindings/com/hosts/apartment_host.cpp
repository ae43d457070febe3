// Uses an object from another apartment than its own, through the system's proxy: apartment_host
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/hosts/late_object.h"

#include <cstdio>

namespace {

using namespace pelmora::test;

// The interface of this thread is a proxy; the object lives in an apartment that the system made.
void useThroughProxy() {
  _RawData* data = nullptr;
  check(CoCreateInstance(CLSID_RawData, nullptr, CLSCTX_INPROC_SERVER, IID__RawData,
                         reinterpret_cast<void**>(&data)),
        "CoCreateInstance");
  check(data->put_NumberOfFittedPoints(23), "NumberOfFittedPoints");
  short points = 0;
  check(data->get_NumberOfFittedPoints(&points), "NumberOfFittedPoints");
  Text given("from another apartment"), kept;
  check(data->put_ExternalID(given.get()), "ExternalID");
  check(data->get_ExternalID(kept), "ExternalID");
  IUnknown* itself = nullptr;
  // What the system's proxies have and objects do not.
  const bool isProxy =
      SUCCEEDED(data->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&itself)));
  if (itself != nullptr) itself->Release();
  std::printf("points %d\nid %s\nproxy %s\n", points, kept.narrow().c_str(),
              isProxy ? "yes" : "no");
  const Outcome sort = LateObject(data).call(L"LastFittedRatioSort");
  std::printf("error %s\n", sort.description.c_str());
  data->Release();
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  useThroughProxy();
  CoUninitialize();
  std::puts("done");
  return 0;
}
