// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/uhf_family.h"

#include "uhfrfid/reader_search_win.h"
#include "uhfrfid/reader_transport_win.h"

#include <memory>
#include <new>

namespace quarlin::uhfrfid {

constinit UhfFamily uhfFamily;

CSmartCritical* UhfFamily::MakeLock() noexcept {
    if (CSmartCritical* const lock = Lock()) {
        return lock;
    }
    std::unique_ptr<CSmartCritical> fresh(new (std::nothrow) CSmartCritical(CSmartCritical::Setup::kPlain));
    if (fresh == nullptr || !fresh->IsInitialized()) {
        return nullptr;
    }
    // Two threads may open at once: the one that comes second takes the lock of the first.
    CSmartCritical* existing = nullptr;
    return lock_.compare_exchange_strong(existing, fresh.get()) ? fresh.release() : existing;
}

void UhfFamily::Open(void** handle) {
    Require(handle != nullptr, QLERR_INVALID_ARGUMENT, CodeName);
    Require(!readerOpen_, QLERR_UHFRFID_INVALID_HANDLE, CodeName);
    *handle = InvalidReaderHandle();
    const FoundReader found = OpenFirstReader();
    *handle = found.handle;
    reportSize_ = found.reportSize;
    readerOpen_ = true;
}

void UhfFamily::Close(void* handle) {
    RequireOpen(handle, CodeName);
    Require(CloseReaderHandle(handle), QLERR_UHFRFID_INVALID_HANDLE, CodeName);
    readerOpen_ = false;
}

void UhfFamily::RequireOpen(const void* handle, Wording wording) const {
    Require(readerOpen_ && IsReaderHandle(handle), QLERR_UHFRFID_INVALID_HANDLE, wording);
}

}  // namespace quarlin::uhfrfid
