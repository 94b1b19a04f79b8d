// SPDX-License-Identifier: Apache-2.0
#include "management/journal_win.h"

#include "management/qlsim_wbem.h"

namespace qlsim {

constinit Journal callJournal;
constinit Journal releaseJournal;
volatile LONG liveObjects = 0;

namespace {

class Exclusive {
  public:
    explicit Exclusive(SRWLOCK* lock) : lock_(lock) { AcquireSRWLockExclusive(lock_); }
    ~Exclusive() { ReleaseSRWLockExclusive(lock_); }
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;

  private:
    SRWLOCK* lock_;
};

}  // namespace

void Journal::Add(const char* text) {
    const Exclusive hold(&lock_);
    lstrcpynA(entries_[next_].text, text, sizeof(entries_[next_].text));
    next_ = (next_ + 1) % kCapacity;
    count_ = count_ < kCapacity ? count_ + 1 : kCapacity;
}

void Journal::Clear() {
    const Exclusive hold(&lock_);
    count_ = 0;
}

int Journal::Read(char* buffer, int size) {
    const Exclusive hold(&lock_);
    int length = 0;
    const auto put = [&](char character) {
        if (length < size - 1) {
            buffer[length] = character;
        }
        ++length;
    };
    for (int i = 0; i < count_; ++i) {
        if (i > 0) {
            put(' ');
        }
        for (const char* text = entries_[(next_ - count_ + i + kCapacity) % kCapacity].text; *text != 0; ++text) {
            put(*text);
        }
    }
    if (size > 0) {
        buffer[length < size ? length : size - 1] = 0;
    }
    return length;
}

}  // namespace qlsim

int QlsimWbemLiveObjects(void) {
    return qlsim::liveObjects;
}

int QlsimWbemReleaseLog(char* buffer, int size) {
    return qlsim::releaseJournal.Read(buffer, size);
}

int QlsimWbemCallLog(char* buffer, int size) {
    return qlsim::callJournal.Read(buffer, size);
}

void QlsimWbemClearLogs(void) {
    qlsim::releaseJournal.Clear();
    qlsim::callJournal.Clear();
}
