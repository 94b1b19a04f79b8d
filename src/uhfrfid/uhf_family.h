// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/smart_critical_win.h"
#include "uhfrfid/result_text.h"

#include <atomic>
#include <cstddef>

namespace quarlin::uhfrfid {

// The family's process-wide state: one reader at most. The reader's handle is not kept here: its callers bring it.
class UhfFamily {
  public:
    // The lock of all functions. It comes into being with the first MakeLock that succeeds, and is never deleted: a
    // caller may wait for it, or for the reader while it holds it, whatever else ends. Both give null without a lock.
    CSmartCritical* MakeLock() noexcept;
    CSmartCritical* Lock() const noexcept { return lock_.load(std::memory_order_acquire); }

    // The lock is held for everything below.

    // Raises QLERR_INVALID_ARGUMENT, QLERR_UHFRFID_INVALID_HANDLE while a reader is open, and the failures of the
    // search. From the search on, the caller's handle is the invalid value unless a reader was opened.
    void Open(void** handle);
    // Raises QLERR_UHFRFID_INVALID_HANDLE.
    void Close(void* handle);

    // Raises QLERR_UHFRFID_INVALID_HANDLE unless a reader is open and the handle can be one.
    void RequireOpen(const void* handle, Wording wording) const;
    // Bytes of an output report of the reader that was opened last.
    std::size_t ReportSize() const { return reportSize_; }

  private:
    std::atomic<CSmartCritical*> lock_{nullptr};
    bool readerOpen_ = false;
    std::size_t reportSize_ = 0;
};

extern UhfFamily uhfFamily;

}  // namespace quarlin::uhfrfid
