// SPDX-License-Identifier: Apache-2.0
#include "core/thread_local_win.h"

#include "core/quarlin_exception.h"

#include <windows.h>
#include <new>

namespace quarlin {

ThreadLocal::ThreadLocal() {
    const DWORD index = TlsAlloc();
    if (index == TLS_OUT_OF_INDEXES) {
        throw QuarlinException(QLERR_INTERNAL_ERROR, "Out of TLS indices");
    }
    index_.reset(new (std::nothrow) std::uint32_t(index));
    if (!index_) {
        TlsFree(index);
        throw QuarlinException(QLERR_INTERNAL_ERROR, "ThreadLocal is not valid");
    }
    if (!TlsSetValue(index, nullptr)) {
        TlsFree(index);
        throw QuarlinException(QLERR_INTERNAL_ERROR, "Failed to set TLS value");
    }
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
    if (!TlsSetValue(Index(), value)) {
        throw QuarlinException(QLERR_INTERNAL_ERROR, "Failed to set TLS value");
    }
}

std::uint32_t ThreadLocal::Index() const {
    Require(index_ != nullptr, QLERR_INTERNAL_ERROR, "ThreadLocal is not valid");
    return *index_;
}

}  // namespace quarlin
