// SPDX-License-Identifier: MIT
#include "bindings/com/module.h"

#include "adapters/os/module_path.h"

#include <oleauto.h>

#include <atomic>

namespace pelmora::com {
namespace {

HINSTANCE ownLibrary = nullptr;
std::atomic<long> uses = 0;

}  // namespace

void setLibrary(HINSTANCE library) { ownLibrary = library; }

std::wstring libraryPath() { return os::modulePath(ownLibrary).native(); }

InUse::InUse() noexcept { ++uses; }
InUse::~InUse() { --uses; }
bool isInUse() noexcept { return uses != 0; }
void lock(bool isLocked) noexcept { uses += isLocked ? 1 : -1; }

HRESULT loadTypeLibrary(ITypeLib** typeLibrary) {
  return LoadTypeLibEx(libraryPath().c_str(), REGKIND_NONE, typeLibrary);
}

}  // namespace pelmora::com
