// SPDX-License-Identifier: Apache-2.0
//
// The C++ runtime's bookkeeping of exceptions in flight, one record per thread, in the module's own TLS block.
//
// The runtime's version of these two functions keeps the record on the heap and never learns that the DLL is unloaded:
// every load, throw and unload left blocks behind in the application's process. Here the loader owns the memory: it
// makes it with each thread and frees it with the thread or with the module.

#include <cxxabi.h>
#include <windows.h>

extern "C" {
extern ULONG _tls_index;
extern char* _tls_start;
}

namespace __cxxabiv1 {

// Layout laid down by the C++ ABI.
struct __cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};
static_assert(sizeof(__cxa_eh_globals) == 16);

namespace {

// Only its offset within the block counts: each thread has a copy.
[[gnu::section(".tls$QL"), gnu::used]] alignas(8) __cxa_eh_globals exceptionGlobals = {nullptr, 0};

}  // namespace

extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
    // ThreadLocalStoragePointer of the thread's environment block: one TLS block for each loaded module.
    char* const* blocks = nullptr;
    __asm__("movq %%gs:0x58, %0" : "=r"(blocks));
    const auto offset = reinterpret_cast<char*>(&exceptionGlobals) - reinterpret_cast<char*>(&_tls_start);
    return reinterpret_cast<__cxa_eh_globals*>(blocks[_tls_index] + offset);
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}

}  // namespace __cxxabiv1
