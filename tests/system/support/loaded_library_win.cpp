// SPDX-License-Identifier: Apache-2.0
#include "support/loaded_library_win.h"

#include <stdexcept>
#include <string>

namespace quarlin::test {
namespace {

constexpr wchar_t kLibraryName[] = L"qlsdk.dll";

template <typename Function>
void Resolve(HMODULE module, const char* name, Function& function) {
    const FARPROC address = GetProcAddress(module, name);
    if (address == nullptr) {
        throw std::runtime_error(std::string("qlsdk.dll does not export ") + name);
    }
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

}  // namespace

LoadedLibrary::LoadedLibrary() : module_(LoadLibraryW(kLibraryName)) {
    if (!module_.Valid()) {
        throw std::runtime_error("qlsdk.dll does not load, error " + std::to_string(GetLastError()));
    }
#define QUARLIN_TEST_RESOLVE_PLAIN(name) Resolve(module_.Get(), #name, name);
#define QUARLIN_TEST_RESOLVE_DECORATED(name, gnuName, msvcName) Resolve(module_.Get(), gnuName, name);
    QUARLIN_TEST_PLAIN_EXPORTS(QUARLIN_TEST_RESOLVE_PLAIN)
    QUARLIN_TEST_DECORATED_EXPORTS(QUARLIN_TEST_RESOLVE_DECORATED)
#undef QUARLIN_TEST_RESOLVE_PLAIN
#undef QUARLIN_TEST_RESOLVE_DECORATED
}

void LoadedLibrary::Unload() {
    module_.Reset();
}

DWORD TryToLoad() {
    SetLastError(ERROR_SUCCESS);
    const UniqueModule module(LoadLibraryW(kLibraryName));
    return module.Valid() ? ERROR_SUCCESS : GetLastError();
}

}  // namespace quarlin::test
