// The end of a thread's own objects (thread_local).
//
// The compiler's run-time library keeps a library loaded until every thread that made such objects
// has ended; a host's main thread never does. Here the objects end with their thread or with the
// library, whichever comes first, so that a library that is not in use can be unloaded.
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <cxxabi.h>

#include <new>

namespace {

// 32-bit destructors take their object in a register, unlike other functions; the compiler warns of
// a member function's calling convention outside its own headers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattributes"
using Destructor = void(_GLIBCXX_CDTOR_CALLABI*)(void*);
#pragma GCC diagnostic pop

struct Ending {
  Destructor destroy;
  void* object;
  Ending* earlier;
};

DWORD slot = TLS_OUT_OF_INDEXES;

// The last object that was made goes first.
void endObjects() {
  while (auto* last = static_cast<Ending*>(TlsGetValue(slot))) {
    TlsSetValue(slot, last->earlier);
    last->destroy(last->object);
    delete last;
  }
}

void NTAPI onThreadOrLibrary(PVOID /*library*/, DWORD reason, PVOID isProcessEnd) {
  if (reason == DLL_PROCESS_ATTACH) slot = TlsAlloc();
  if (slot == TLS_OUT_OF_INDEXES) return;
  // At the end of the process other threads have been cut off anywhere: nothing is touched any
  // more.
  if (reason == DLL_THREAD_DETACH || (reason == DLL_PROCESS_DETACH && isProcessEnd == nullptr))
    endObjects();
  if (reason == DLL_PROCESS_DETACH) TlsFree(slot);
}

}  // namespace

// Called by the compiler where such an object has been made.
extern "C" int abi::__cxa_thread_atexit(Destructor destroy, void* object,
                                        void* /*library*/) noexcept {
  auto* earlier = static_cast<Ending*>(TlsGetValue(slot));
  auto* last = new (std::nothrow) Ending{destroy, object, earlier};
  if (last == nullptr) return -1;
  TlsSetValue(slot, last);
  return 0;
}

extern "C" {

// Before the thread library's own callback (XLF), which frees the memory of the objects.
extern const PIMAGE_TLS_CALLBACK pelmoraThreadEnd;
__attribute__((section(".CRT$XLB"), used)) const PIMAGE_TLS_CALLBACK pelmoraThreadEnd =
    onThreadOrLibrary;

}  // extern "C"
