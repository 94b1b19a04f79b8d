// SPDX-License-Identifier: Apache-2.0
// java_test_aid: does for tests in Java what Java has no call for. It takes the turns that tests of the machine's
// devices take, and counts the handles of a process. A line on its input is a command, a line on its output the answer:
// "ok" with a number behind it where there is one, or "error" and a sentence. Whatever it holds is let go when it ends,
// which it does with its input.
#include <windows.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/owners_win.h"
#include "support/shared_turn_win.h"

namespace quarlin::test {
namespace {

constexpr DWORD kPatience = 200000;  // milliseconds; programs of many tests have their turn for a minute or more

std::wstring Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

class MutexTurn {
  public:
    explicit MutexTurn(UniqueHandle mutex) : mutex_(std::move(mutex)) {}
    MutexTurn(const MutexTurn&) = delete;
    MutexTurn& operator=(const MutexTurn&) = delete;
    ~MutexTurn() { ReleaseMutex(mutex_.Get()); }

  private:
    UniqueHandle mutex_;
};

// One of several mutexes, whichever is free first.
std::pair<std::size_t, std::unique_ptr<MutexTurn>> TakeOneOf(const std::vector<std::string>& names) {
    std::vector<UniqueHandle> mutexes;
    std::vector<HANDLE> handles;
    for (const std::string& name : names) {
        mutexes.emplace_back(CreateMutexW(nullptr, FALSE, Wide(name).c_str()));
        if (!mutexes.back().Valid()) {
            throw std::runtime_error("no mutex " + name + ", error " + std::to_string(GetLastError()));
        }
        handles.push_back(mutexes.back().Get());
    }
    const auto count = static_cast<DWORD>(handles.size());
    DWORD taken = WaitForMultipleObjects(count, handles.data(), FALSE, kPatience);
    if (taken >= WAIT_ABANDONED_0 && taken < WAIT_ABANDONED_0 + count) {
        taken -= WAIT_ABANDONED_0;  // somebody ended in the middle, and what it had plugged in went with it
    }
    if (taken >= count) {
        throw std::runtime_error("other tests do not let " + names.front() + " go");
    }
    return {taken, std::make_unique<MutexTurn>(std::move(mutexes[taken]))};
}

// Copies each number that a handle of that process may have: what can be copied is one. It asks nobody for a table of
// all handles, which costs the server of Wine 8 its life now and then.
std::size_t CountHandles(DWORD processId) {
    const UniqueHandle process(OpenProcess(PROCESS_DUP_HANDLE, FALSE, processId));
    if (!process.Valid()) {
        throw std::runtime_error("no process " + std::to_string(processId));
    }
    constexpr std::uintptr_t kStep = 4;
    // A handle gets the lowest number that is free: behind a gap like this there are none.
    constexpr std::uintptr_t kGap = kStep * 256;
    std::size_t handles = 0;
    std::uintptr_t last = 0;
    for (std::uintptr_t number = kStep; number <= last + kGap; number += kStep) {
        HANDLE copy = nullptr;
        if (DuplicateHandle(process.Get(), reinterpret_cast<HANDLE>(number), GetCurrentProcess(), &copy, 0, FALSE,
                            DUPLICATE_SAME_ACCESS) != FALSE) {
            const UniqueHandle closed(copy);
            ++handles;
            last = number;
        }
    }
    return handles;
}

class Aid {
  public:
    std::string Answer(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        std::string name;
        words >> command >> name;
        if (command == "mutex") {
            std::vector<std::string> names{name};
            for (std::string other; words >> other;) {
                names.push_back(other);
            }
            auto [index, mutex] = TakeOneOf(names);
            mutexes_[names[index]] = std::move(mutex);
            return "ok " + std::to_string(index);
        }
        if (command == "turn") {
            std::string use;
            words >> use;
            turns_[name] = std::make_unique<SharedTurn>(
                Wide(name), use == "shared" ? SharedTurn::Use::kShared : SharedTurn::Use::kExclusive, kPatience);
            return "ok";
        }
        if (command == "handles") {
            return "ok " + std::to_string(CountHandles(static_cast<DWORD>(std::stoul(name))));
        }
        return "error no command " + command;
    }

  private:
    std::map<std::string, std::unique_ptr<MutexTurn>> mutexes_;
    std::map<std::string, std::unique_ptr<SharedTurn>> turns_;
};

}  // namespace
}  // namespace quarlin::test

int main() {
    quarlin::test::Aid aid;
    for (std::string line; std::getline(std::cin, line);) {
        while (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::string answer;
        try {
            answer = aid.Answer(line);
        } catch (const std::exception& error) {
            answer = std::string("error ") + error.what();
        }
        std::cout << answer << std::endl;
    }
    return 0;
}
