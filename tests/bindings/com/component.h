// The library as a host process has it: loaded from its file, with its boxes answered.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/bindings/com/hosts/late_object.h"

#include <pelmora/database.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace pelmora::test {

// Pelmora.dll beside the running program.
class Library {
 public:
  Library() : module_(LoadLibraryW(L"Pelmora.dll")) {
    if (module_ == nullptr) throw std::runtime_error("Pelmora.dll cannot be loaded");
  }
  ~Library() {
    if (module_ != nullptr) FreeLibrary(module_);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  [[nodiscard]] HMODULE module() const { return module_; }
  void unload() {
    FreeLibrary(module_);
    module_ = nullptr;
  }
  template <class Function>
  [[nodiscard]] Function* entry(const char* name) const {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }
  // With one reference, which is the caller's.
  [[nodiscard]] _RawData* create() const {
    IClassFactory* factory = nullptr;
    check(entry<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject")(
              CLSID_RawData, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
          "DllGetClassObject");
    _RawData* data = nullptr;
    const HRESULT result =
        factory->CreateInstance(nullptr, IID__RawData, reinterpret_cast<void**>(&data));
    factory->Release();
    check(result, "CreateInstance");
    return data;
  }
  [[nodiscard]] bool canUnload() const {
    return entry<HRESULT WINAPI()>("DllCanUnloadNow")() == S_OK;
  }

 private:
  HMODULE module_;
};

struct Box {
  std::string title, text;
  std::vector<std::string> buttons;
};

// Answers every dialog of this process as soon as it is open, and remembers it.
class BoxAnswerer {
 public:
  // `answer`: the code of the button to press; a box without it is closed.
  explicit BoxAnswerer(int answer = IDOK) : answer_(answer), thread_([this] { watch(); }) {}
  ~BoxAnswerer() {
    isOver_ = true;
    thread_.join();
  }
  BoxAnswerer(const BoxAnswerer&) = delete;
  BoxAnswerer& operator=(const BoxAnswerer&) = delete;

  [[nodiscard]] std::vector<Box> boxes() {
    const std::lock_guard guard(mutex_);
    return boxes_;
  }
  [[nodiscard]] std::string lastText() {
    const auto all = boxes();
    return all.empty() ? std::string() : all.back().text;
  }

 private:
  static std::string textOfWindow(HWND window) {
    std::wstring text(1024, L'\0');
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_NORMAL, 2000, &length);
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length)};
  }
  static BOOL CALLBACK readControl(HWND control, LPARAM box) {
    std::array<wchar_t, 32> kind{};
    GetClassNameW(control, kind.data(), static_cast<int>(kind.size()));
    auto& read = *reinterpret_cast<Box*>(box);
    const std::string text = textOfWindow(control);
    const bool isButton = std::wstring(kind.data()) == L"Button";
    const bool isVisible = (GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
    if (isButton && isVisible) read.buttons.push_back(text);
    if (!isButton && !text.empty()) read.text = text;
    return TRUE;
  }
  static BOOL CALLBACK findDialog(HWND window, LPARAM found) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    std::array<wchar_t, 32> kind{};
    GetClassNameW(window, kind.data(), static_cast<int>(kind.size()));
    if (process != GetCurrentProcessId() || std::wstring(kind.data()) != L"#32770" ||
        !IsWindowVisible(window))
      return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
  }
  void watch() {
    while (!isOver_) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      HWND dialog = nullptr;
      EnumWindows(findDialog, reinterpret_cast<LPARAM>(&dialog));
      if (dialog == nullptr) continue;
      Box box{textOfWindow(dialog), {}, {}};
      EnumChildWindows(dialog, readControl, reinterpret_cast<LPARAM>(&box));
      {
        const std::lock_guard guard(mutex_);
        boxes_.push_back(box);
      }
      const HWND button = GetDlgItem(dialog, answer_);
      if (button != nullptr)
        SendMessageTimeoutW(button, BM_CLICK, 0, 0, SMTO_NORMAL, 2000, nullptr);
      if (button == nullptr)
        SendMessageTimeoutW(dialog, WM_CLOSE, 0, 0, SMTO_NORMAL, 2000, nullptr);
      for (int i = 0; i < 100 && IsWindow(dialog); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

  int answer_;
  std::atomic<bool> isOver_ = false;
  std::mutex mutex_;
  std::vector<Box> boxes_;
  std::thread thread_;
};

// One entry, or null. The record stays with the test: Wine cannot free arrays inside records.
inline const ::SeriesInfo* entryOf(const ::MeterInfo& info) {
  return info.Series == nullptr ? nullptr : static_cast<const ::SeriesInfo*>(info.Series->pvData);
}

// An object and, where asked for, a fresh curve database that it looks at.
class ComponentTest : public testing::Test {
 protected:
  ComponentTest() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    data = library.create();
  }
  ~ComponentTest() override {
    if (data != nullptr) data->Release();
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
    CoUninitialize();
  }

  [[nodiscard]] LateObject late() const { return LateObject(data); }
  // A folder of this test.
  const std::filesystem::path& folder() {
    if (folder_.empty()) {
      folder_ = std::filesystem::current_path() / ("test-" + std::to_string(GetCurrentProcessId()));
      std::filesystem::remove_all(folder_);  // a crashed run's
      std::filesystem::create_directories(folder_);
    }
    return folder_;
  }
  std::string newDatabase(const std::string& name = "curves.db") {
    const std::string path = (folder() / name).string();
    createCurveDatabase(path);
    return path;
  }
  void useNewDatabase() {
    Text path(newDatabase());
    ::DatabaseLocation location{};
    check(data->dbDirSetByString(path, &location), "dbDirSetByString");
  }
  // A meter with one raw part of the main job's points.
  void storeSeries() {
    useNewDatabase();
    LONG id = 0;
    check(data->setMeterSN(Text(mainJobMeter), nullptr, &id), "setMeterSN");
    SAFEARRAY* table = arrayOf(mainJobPoints());
    short dataSet = 0;
    VARIANT_BOOL no = VARIANT_FALSE, isStored = VARIANT_FALSE;
    check(data->SetRaw(Text(mainJobSeries), Text(mainJobMeter), &table, &dataSet, &no, nullptr,
                       &isStored),
          "SetRaw");
    SafeArrayDestroy(table);
    ASSERT_NE(isStored, VARIANT_FALSE);
  }

  Library library;
  _RawData* data = nullptr;

 private:
  std::filesystem::path folder_;
};

}  // namespace pelmora::test
