// SPDX-License-Identifier: Apache-2.0
#include "support/thread_count_win.h"

#include <windows.h>

#include <tlhelp32.h>

#include <stdexcept>

#include "support/owners_win.h"

namespace quarlin::test {

size_t CountThreads() {
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    size_t count = 0;
    for (BOOL found = Thread32First(snapshot.Get(), &entry); found; found = Thread32Next(snapshot.Get(), &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    if (count == 0) {
        throw std::runtime_error("the system does not list the threads");
    }
    return count;
}

}  // namespace quarlin::test
