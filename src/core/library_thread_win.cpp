// SPDX-License-Identifier: Apache-2.0
#include "core/library_thread_win.h"

#include "core/last_error.h"

#include <process.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace quarlin {

namespace {

struct Task {
    std::function<void()> body;
    HMODULE module = nullptr;
};

unsigned __stdcall Run(void* argument) {
    std::unique_ptr<Task> task(static_cast<Task*>(argument));
    HMODULE const module = task->module;
    task->body();
    task.reset();
    // What calls of a callback have left behind: nobody can fetch it any more.
    ForgetQlLastError();
    FreeLibraryAndExitThread(module, 0);
}

}  // namespace

bool LibraryThread::Start(std::function<void()> body) {
    auto task = std::make_unique<Task>();
    task->body = std::move(body);
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const wchar_t*>(&Run),
                            &task->module)) {
        return false;
    }
    const std::uintptr_t thread = _beginthreadex(nullptr, 0, &Run, task.get(), 0, &threadId_);
    if (thread == 0) {
        FreeLibrary(task->module);
        return false;
    }
    // The thread's own from here on.
    static_cast<void>(task.release());
    thread_ = reinterpret_cast<HANDLE>(thread);  // NOLINT(performance-no-int-to-ptr): the runtime gives it so
    return true;
}

void LibraryThread::Wait(DWORD milliseconds) const {
    WaitForSingleObject(thread_, milliseconds);
}

void LibraryThread::Forget() {
    if (thread_ != nullptr) {
        CloseHandle(std::exchange(thread_, nullptr));
    }
}

}  // namespace quarlin
