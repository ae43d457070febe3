// Use without registration, through the manifest beside the library.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

namespace pelmora::test {
namespace {

TEST(manifest, makes_the_class_known_without_registration) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  _RawData* data = nullptr;
  EXPECT_EQ(CoCreateInstance(CLSID_RawData, nullptr, CLSCTX_INPROC_SERVER, IID__RawData,
                             reinterpret_cast<void**>(&data)),
            REGDB_E_CLASSNOTREG);
  const std::wstring manifest = (std::filesystem::current_path() / "Pelmora.manifest").native();
  ACTCTXW wanted{};
  wanted.cbSize = sizeof(wanted);
  wanted.lpSource = manifest.c_str();
  const HANDLE context = CreateActCtxW(&wanted);
  ASSERT_NE(context, INVALID_HANDLE_VALUE) << GetLastError();
  ULONG_PTR cookie = 0;
  ASSERT_NE(ActivateActCtx(context, &cookie), 0);
  CLSID named{};
  EXPECT_EQ(CLSIDFromProgID(L"Pelmora.RawData.1", &named), S_OK);
  // The system may answer with a stand-in for the class.
  ASSERT_EQ(CoCreateInstance(named, nullptr, CLSCTX_INPROC_SERVER, IID__RawData,
                             reinterpret_cast<void**>(&data)),
            S_OK);
  short points = 0;
  EXPECT_EQ(data->get_NumberOfFittedPoints(&points), S_OK);
  EXPECT_EQ(points, 40);
  data->Release();
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(context);
  CoUninitialize();
}

TEST(version, is_in_the_librarys_file) {
  DWORD ignored = 0;
  std::string block(GetFileVersionInfoSizeA("Pelmora.dll", &ignored), '\0');
  ASSERT_NE(block.size(), 0U);
  ASSERT_NE(GetFileVersionInfoA("Pelmora.dll", 0, static_cast<DWORD>(block.size()), block.data()),
            0);
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT size = 0;
  ASSERT_NE(VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&fixed), &size), 0);
  EXPECT_EQ(std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                std::to_string(HIWORD(fixed->dwFileVersionLS)),
            PELMORA_VERSION);
}

}  // namespace
}  // namespace pelmora::test
