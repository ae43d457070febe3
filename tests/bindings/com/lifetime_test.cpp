// Objects, apartments, and the end of the library.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include <xmmintrin.h>

#include <thread>

namespace pelmora::test {
namespace {

using lifetime = ComponentTest;

std::string pathOf(_RawData* data) {
  ::DatabaseLocation location{};
  check(data->get_dbDir(&location), "dbDir");
  return Text::narrowOf(location.FullPath);
}

TEST_F(lifetime, shares_the_location_between_two_objects_of_an_apartment) {
  _RawData* second = library.create();
  ::DatabaseLocation location{};
  EXPECT_EQ(second->dbDirSetByString(Text("e:\\other.mdb"), &location), S_OK);
  EXPECT_EQ(pathOf(data), "e:\\other.mdb");
  _RawData* third = library.create();
  EXPECT_EQ(pathOf(data), "c:\\program files\\quorvane\\Pelmora.mdb");
  second->Release();
  third->Release();
}

TEST_F(lifetime, keeps_two_apartments_apart) {
  ::DatabaseLocation location{};
  ASSERT_EQ(data->dbDirSetByString(Text("e:\\mine.mdb"), &location), S_OK);
  std::string theirs;
  std::thread other([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    _RawData* object = library.create();
    theirs = pathOf(object);
    ::DatabaseLocation ignored{};
    object->dbDirSetByString(Text("e:\\theirs.mdb"), &ignored);
    object->Release();
    CoUninitialize();
  });
  other.join();
  EXPECT_EQ(theirs, "c:\\program files\\quorvane\\Pelmora.mdb");
  EXPECT_EQ(pathOf(data), "e:\\mine.mdb");
}

TEST_F(lifetime, has_one_identity_and_the_interfaces_of_a_class) {
  IUnknown *first = nullptr, *second = nullptr;
  IDispatch* dispatch = nullptr;
  ASSERT_EQ(data->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&first)), S_OK);
  ASSERT_EQ(data->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch)), S_OK);
  ASSERT_EQ(dispatch->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&second)), S_OK);
  EXPECT_EQ(first, second);
  void* none = nullptr;
  EXPECT_EQ(data->QueryInterface(IID_IClassFactory, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
  first->Release();
  second->Release();
  dispatch->Release();
}

TEST_F(lifetime, unloads_when_nothing_is_in_use) {
  EXPECT_FALSE(library.canUnload());
  storeSeries();
  data->Release();
  data = nullptr;
  EXPECT_TRUE(library.canUnload());
  library.unload();
  EXPECT_EQ(GetModuleHandleW(L"Pelmora.dll"), nullptr);
}

TEST_F(lifetime, loads_and_unloads_again_and_again) {
  data->Release();
  data = nullptr;
  library.unload();
  for (int i = 0; i < 20; ++i) {
    const Library again;
    again.create()->Release();
    EXPECT_TRUE(again.canUnload());
  }
  EXPECT_EQ(GetModuleHandleW(L"Pelmora.dll"), nullptr);
}

TEST_F(lifetime, is_kept_by_its_class_object_and_by_a_lock) {
  data->Release();
  data = nullptr;
  IClassFactory* factory = nullptr;
  auto* entry = library.entry<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
  ASSERT_EQ(entry(CLSID_RawData, IID_IClassFactory, reinterpret_cast<void**>(&factory)), S_OK);
  EXPECT_FALSE(library.canUnload());
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory->Release();
  EXPECT_FALSE(library.canUnload());
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  EXPECT_TRUE(library.canUnload());
  void* none = nullptr;
  EXPECT_EQ(entry(IID__RawData, IID_IClassFactory, &none), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(none, nullptr);
}

unsigned short x87Mode() {
  unsigned short mode = 0;
  __asm__ volatile("fnstcw %0" : "=m"(mode));
  return mode;
}
void setX87Mode(unsigned short mode) { __asm__ volatile("fldcw %0" : : "m"(mode)); }

// Hosts round to 53 bits or otherwise: the numbers must not depend on it, and the host must find
// its own mode.
TEST_F(lifetime, computes_alike_whatever_the_hosts_floating_point_mode) {
  storeSeries();
  data->put_Unattended(VARIANT_TRUE);
  float band = 1.0F;
  data->put_BandPercent(&band);
  const auto fit = [&] {
    double low = 12, high = 1000;
    VARIANT_BOOL isEmpty = VARIANT_TRUE;
    SAFEARRAY* fitted = nullptr;
    EXPECT_EQ(
        data->determineFittedCurve(Text(mainJobSeries), Text(mainJobMeter), &isEmpty, &low, &high,
                                   Text("Roshko"), Text("Strouhal"), nullptr, nullptr, &fitted),
        S_OK);
    const Points points = pointsOf(fitted);
    SafeArrayDestroy(fitted);
    return points;
  };
  const Points expected = fit();
  ASSERT_EQ(expected.size(), 40U);
  Sink sink;
  unsigned short modeInHandler = 0;
  unsigned int sseInHandler = 0;
  sink.handler = [&](DISPID, DISPPARAMS&, EXCEPINFO*) {
    modeInHandler = x87Mode();
    sseInHandler = _mm_getcsr();
    return S_OK;
  };
  const Connected connected(data, sink);
  const unsigned short before = x87Mode();
  const unsigned int sseBefore = _mm_getcsr();
  constexpr unsigned short shortMantissaRoundedUp = 0x087F;
  constexpr unsigned int flushedAndRoundedUp = 0x1F80 | 0x8000 | 0x4000;
  setX87Mode(shortMantissaRoundedUp);
  _mm_setcsr(flushedAndRoundedUp);
  const Points points = fit();
  const unsigned short after = x87Mode();
  const unsigned int sseAfter = _mm_getcsr();
  setX87Mode(before);
  _mm_setcsr(sseBefore);
  constexpr unsigned int flags = 0x3F;
  EXPECT_EQ(points, expected);
  EXPECT_EQ(after, shortMantissaRoundedUp);
  EXPECT_EQ(sseAfter & ~flags, flushedAndRoundedUp);
  EXPECT_EQ(modeInHandler, shortMantissaRoundedUp);
  EXPECT_EQ(sseInHandler & ~flags, flushedAndRoundedUp);
}

LRESULT CALLBACK countMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message != WM_APP) return DefWindowProcW(window, message, first, second);
  ++*reinterpret_cast<int*>(second);
  return 0;
}

TEST_F(lifetime, lets_window_messages_of_the_host_through) {
  storeSeries();
  data->put_Unattended(VARIANT_TRUE);
  WNDCLASSW kind{};
  kind.lpfnWndProc = countMessage;
  kind.lpszClassName = L"PelmoraTestWindow";
  RegisterClassW(&kind);
  const HWND window = CreateWindowW(L"PelmoraTestWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    nullptr, nullptr);
  ASSERT_NE(window, nullptr);
  int arrived = 0;
  PostMessageW(window, WM_APP, 0, reinterpret_cast<LPARAM>(&arrived));
  PostQuitMessage(3);
  double low = 12, high = 1000;
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  SAFEARRAY* fitted = nullptr;
  EXPECT_EQ(
      data->determineFittedCurve(Text(mainJobSeries), Text(mainJobMeter), &isEmpty, &low, &high,
                                 Text("Roshko"), Text("Strouhal"), nullptr, nullptr, &fitted),
      S_OK);
  SafeArrayDestroy(fitted);
  EXPECT_EQ(arrived, 1);
  MSG message{};
  EXPECT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE),
            0);  // the host's own loop still ends
  EXPECT_EQ(message.wParam, 3U);
  DestroyWindow(window);
}

}  // namespace
}  // namespace pelmora::test
