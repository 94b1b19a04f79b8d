// SPDX-License-Identifier: Apache-2.0
#include "bcr/barcode_family_win.h"
#include "bcr/window_messages_win.h"
#include "core/last_error.h"
#include "core/library_state.h"
#include "msr/card_reader_family.h"

#include <windows.h>

namespace __gnu_cxx {
// The C++ runtime's own release of what it allocated at start: the pool for exceptions thrown without memory.
void __freeres();  // NOLINT(bugprone-reserved-identifier): the runtime's own name
}  // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            quarlin::LoadLibraryState(instance);
            quarlin::bcr::RegisterWindowMessages();
            break;
        case DLL_PROCESS_DETACH:
            if (processEnds == nullptr) {
                // No engine runs: the listener's thread would keep the library loaded.
                quarlin::bcr::barcodeFamily.Unload();
            } else {
                // The other threads have been ended wherever they were, and engine libraries may be gone.
                quarlin::bcr::barcodeFamily.Abandon();
            }
            quarlin::UnloadLibraryState();
            if (processEnds == nullptr) {
                // No reader is enabled: its thread would keep the library loaded.
                quarlin::msr::cardReaderFamily.Uninitialize();
                // This thread's record. Those of other threads are theirs, and stay.
                quarlin::ForgetQlLastError();
                __gnu_cxx::__freeres();
            }
            break;
        default:
            // Threads come and go without the library: their records are theirs to fetch.
            break;
    }
    return TRUE;
}
