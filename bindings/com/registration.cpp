// SPDX-License-Identifier: MIT
#include "bindings/com/registration.h"

#include "adapters/os/reference.h"
#include "bindings/com/module.h"
#include "bindings/com/pelmora_automation.h"

#include <olectl.h>

#include <array>
#include <string>

namespace pelmora::com {
namespace {

constexpr const wchar_t* className = L"Pelmora calibration curves";
constexpr const wchar_t* currentName = L"Pelmora.RawData";
constexpr const wchar_t* versionedName = L"Pelmora.RawData.1";

std::wstring textOf(const GUID& identity) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(identity, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring classKey() { return L"CLSID\\" + textOf(CLSID_RawData); }

bool write(const std::wstring& key, const std::wstring& text, const wchar_t* name = nullptr) {
  HKEY opened = nullptr;
  if (RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened,
                      nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  const LSTATUS written =
      RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes);
  RegCloseKey(opened);
  return written == ERROR_SUCCESS;
}

bool writeClass() {
  const std::wstring key = classKey();
  const std::wstring identity = textOf(CLSID_RawData);
  return write(key, className) && write(key + L"\\InprocServer32", libraryPath()) &&
         write(key + L"\\InprocServer32", L"Apartment", L"ThreadingModel") &&
         write(key + L"\\ProgID", versionedName) &&
         write(key + L"\\VersionIndependentProgID", currentName) &&
         write(key + L"\\TypeLib", textOf(LIBID_Pelmora)) && write(key + L"\\Version", L"1.0") &&
         write(key + L"\\Programmable", L"") && write(currentName, className) &&
         write(std::wstring(currentName) + L"\\CLSID", identity) &&
         write(std::wstring(currentName) + L"\\CurVer", versionedName) &&
         write(versionedName, className) &&
         write(std::wstring(versionedName) + L"\\CLSID", identity);
}

bool remove(const std::wstring& key) {
  const LSTATUS removed = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  return removed == ERROR_SUCCESS || removed == ERROR_FILE_NOT_FOUND;
}

HRESULT registerTypes() {
  os::Reference<ITypeLib> types;
  std::wstring path = libraryPath();
  const HRESULT loaded = loadTypeLibrary(types.receive());
  return FAILED(loaded) ? loaded : RegisterTypeLib(types.get(), path.data(), nullptr);
}

HRESULT unregisterTypes() {
  os::Reference<ITypeLib> types;
  HRESULT result = loadTypeLibrary(types.receive());
  if (FAILED(result)) return result;
  TLIBATTR* attributes = nullptr;
  result = types->GetLibAttr(&attributes);
  if (FAILED(result)) return result;
  result = UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                             attributes->lcid, attributes->syskind);
  types->ReleaseTLibAttr(attributes);
  return result;
}

}  // namespace

HRESULT registerServer() {
  HRESULT result = S_OK;
  if (!writeClass()) result = SELFREG_E_CLASS;
  if (SUCCEEDED(result) && FAILED(registerTypes())) result = SELFREG_E_TYPELIB;
  if (FAILED(result)) (void)unregisterServer();
  return result;
}

HRESULT unregisterServer() {
  const bool isRemoved = static_cast<unsigned>(remove(classKey())) &
                         static_cast<unsigned>(remove(currentName)) &
                         static_cast<unsigned>(remove(versionedName));
  const HRESULT types = unregisterTypes();
  if (!isRemoved) return SELFREG_E_CLASS;
  return SUCCEEDED(types) || types == TYPE_E_REGISTRYACCESS ? S_OK : SELFREG_E_TYPELIB;
}

}  // namespace pelmora::com
