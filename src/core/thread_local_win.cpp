// SPDX-License-Identifier: Apache-2.0
#include "core/thread_local_win.h"

#include "core/quarlin_exception.h"

#include <windows.h>
#include <new>

namespace quarlin {
namespace {

// The library's own slots are made while it is being loaded, where the system's loader is the only one to catch. The
// runtime cannot run clean-ups on the way to a handler that is not its own, so nothing that needs one lives here.
std::uint32_t* MakeIndexCell() {
    const DWORD index = TlsAlloc();
    if (index == TLS_OUT_OF_INDEXES) {
        Fail(QLERR_INTERNAL_ERROR, "Out of TLS indices");
    }
    auto* const cell = new (std::nothrow) std::uint32_t(index);
    if (cell == nullptr) {
        TlsFree(index);
        Fail(QLERR_INTERNAL_ERROR, "ThreadLocal is not valid");
    }
    if (!TlsSetValue(index, nullptr)) {
        delete cell;
        TlsFree(index);
        Fail(QLERR_INTERNAL_ERROR, "Failed to set TLS value");
    }
    return cell;
}

}  // namespace

ThreadLocal::ThreadLocal() : index_(MakeIndexCell()) {
}

ThreadLocal::~ThreadLocal() {
    if (index_) {
        TlsFree(*index_);
    }
}

void* ThreadLocal::Get() const {
    return TlsGetValue(Index());
}

void ThreadLocal::Set(void* value) {
    Require(TlsSetValue(Index(), value), QLERR_INTERNAL_ERROR, "Failed to set TLS value");
}

std::uint32_t ThreadLocal::Index() const {
    Require(index_ != nullptr, QLERR_INTERNAL_ERROR, "ThreadLocal is not valid");
    return *index_;
}

}  // namespace quarlin
