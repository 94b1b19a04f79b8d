// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/interruptible_lock_win.h"
#include "msr/magstripe_manager.h"

#include <quarlin/card_reader.h>

#include <cstdint>

namespace quarlin::msr {

// The family's process-wide state. Every function but Lock is called with the lock held. Each raises QLERR_ codes with
// the texts of its exported function.
class CardReaderFamily {
  public:
    InterruptibleLock& Lock() { return lock_; }

    void Initialize();
    void Uninitialize();

    // Raises QLERR_INVALID_STATE when there is none.
    IQlMagStripeMgr& Manager(const char* missing = "No exist manager instance.") const;

    // Looks for readers and lists them. count: in, the room at `readers`; out, how many there are.
    void ListReaders(MagStripeReaderInfo* readers, int& count);
    void Select(std::int32_t index);
    void EnableSelected(bool enable);
    bool IsSelectedEnabled() const;

  private:
    InterruptibleLock lock_;
    // Owned. When the process ends with a manager alive it is left to the system: the threads of its readers have been
    // ended then wherever they were, locks and all.
    IQlMagStripeMgr* manager_ = nullptr;
    std::int32_t selectedIndex_ = 0;
};

extern CardReaderFamily cardReaderFamily;

}  // namespace quarlin::msr
