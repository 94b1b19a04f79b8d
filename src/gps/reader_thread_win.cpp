// SPDX-License-Identifier: Apache-2.0
#include "gps/reader_thread_win.h"

namespace quarlin::gps {

bool ReaderThread::Start(Procedure procedure, void* argument) {
    procedure_ = procedure;
    argument_ = argument;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const wchar_t*>(&Run), &module_)) {
        return false;
    }
    thread_ = CreateThread(nullptr, 0, &Run, this, 0, &threadId_);
    if (thread_ == nullptr) {
        FreeLibrary(module_);
        return false;
    }
    return true;
}

void ReaderThread::Join() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    thread_ = nullptr;
}

DWORD WINAPI ReaderThread::Run(void* self) {
    const auto* const thread = static_cast<ReaderThread*>(self);
    HMODULE const module = thread->module_;
    thread->procedure_(thread->argument_);
    FreeLibraryAndExitThread(module, 0);
}

}  // namespace quarlin::gps
