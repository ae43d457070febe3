// A third-party library that is loaded when it is first needed.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/failure.h>

#include <dlfcn.h>

#include <string>
#include <utility>

namespace pelmora {

// The library stays loaded for the rest of the process, so functions found in it may be kept.
class LoadedLibrary {
 public:
  // file: its name for the loader, such as "libxml2.so.2".
  // package: what to install. trouble: what fails without it, such as "the workbook cannot be
  // made".
  //
  // Errors: Unusable if it cannot be loaded.
  LoadedLibrary(const char* file, std::string package, std::string trouble)
      : package_(std::move(package)),
        trouble_(std::move(trouble)),
        library_(dlopen(file, RTLD_LAZY | RTLD_LOCAL)) {
    if (library_ == nullptr) fail();
  }

  // Errors: Unusable if the library has no such function.
  template <class Function>
  void find(const char* name, Function& function) const {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    if (function == nullptr) fail();
  }

 private:
  [[noreturn]] void fail() const {
    const char* why = dlerror();
    throw calibration::Unusable(
        {trouble_ + (why == nullptr ? "" : std::string(": ") + why), "", "install " + package_});
  }

  std::string package_, trouble_;
  void* library_;
};

}  // namespace pelmora
