// SPDX-License-Identifier: Apache-2.0
// What the management stand-in remembers for a test: which steps were called, which objects live, which were released.
#pragma once

#include <windows.h>

namespace qlsim {

struct JournalEntry {
    char text[48];
};

class Journal {
  public:
    constexpr Journal() = default;
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    void Add(const char* text);
    void Clear();
    // The length of the whole text; `buffer` gets what fits.
    int Read(char* buffer, int size);

  private:
    static constexpr int kCapacity = 64;

    SRWLOCK lock_ = SRWLOCK_INIT;
    JournalEntry entries_[kCapacity] = {};
    int next_ = 0;
    int count_ = 0;
};

extern Journal callJournal;
extern Journal releaseJournal;
extern volatile LONG liveObjects;

}  // namespace qlsim
