// SPDX-License-Identifier: Apache-2.0
// The library is freed without a word after its reader was unplugged: the reader's handles go with it.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <functional>

#include "card/test_reader_win.h"
#include "frame/leak_rounds_win.h"
#include "support/import_hook_win.h"
#include "support/loaded_library_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

bool IsLoaded() {
    return GetModuleHandleW(L"qlsdk.dll") != nullptr;
}

bool EnableReader(const LoadedLibrary& library) {
    MagStripeReaderInfo info{};
    int count = 1;
    return library.QLMSR_Initialize() == QLERR_OK && library.QLMSR_GetMagStripeDevices(&info, &count) == QLERR_OK &&
           count == 1 && library.QLMSR_Enable() == QLERR_OK;
}

bool IsEnabled(const LoadedLibrary& library) {
    bool enabled = false;
    return library.QLMSR_IsEnabled(&enabled) == QLERR_OK && enabled;
}

class CardFreedAfterUnplug : public ::testing::Test {
  protected:
    // Enables, and leaves the rest to the test, in some rounds. Nothing of them may be left.
    void ExpectNothingLeftBy(const std::function<void(LoadedLibrary&)>& end) {
        const auto round = [&] {
            LoadedLibrary library;
            ASSERT_TRUE(EnableReader(library));
            end(library);
            ASSERT_TRUE(WaitUntil([] { return !IsLoaded(); }));
            reader_.Plug();
        };
        KeepImportsLoaded();
        for (int i = 0; i < 2; ++i) {
            ASSERT_NO_FATAL_FAILURE(round());
        }
        CountOpenHandles();
        const std::size_t handles = CountOpenHandles();
        const std::size_t threads = CountThreads();
        constexpr int kRounds = 4;
        for (int i = 0; i < kRounds; ++i) {
            ASSERT_NO_FATAL_FAILURE(round());
        }
        EXPECT_TRUE(WaitUntil([&] { return CountThreads() == threads; }));
        // What is left behind is so in each round; the system's own, such as a lock's first contention, once.
        EXPECT_LT(CountOpenHandles(), handles + kRounds);
    }

  private:
    // Plugged in again it is the same reader to the library.
    static ReaderSettings OnOnePath() {
        ReaderSettings settings;
        settings.instance = "6&2f9a1b0c&0&0000";
        return settings;
    }

  protected:
    const CardReaderTurn turn_;
    TestReader reader_{OnOnePath()};
};

TEST_F(CardFreedAfterUnplug, GivesTheReadersHandlesBack) {
    ExpectNothingLeftBy([&](LoadedLibrary& library) {
        reader_.Unplug();
        ASSERT_TRUE(WaitUntil([&] { return !IsEnabled(library); }));
        library.Unload();
    });
}

// The reader's thread is the last that holds the library.
TEST_F(CardFreedAfterUnplug, GivesThemBackWhenTheThreadFreesItLast) {
    ExpectNothingLeftBy([&](LoadedLibrary& library) {
        library.Unload();
        reader_.Unplug();
    });
}

HANDLE hasLetGo;
HANDLE mayEnd;

// The thread has let go of the library and is held up before its end, as it is by whoever unloads libraries.
void WINAPI EndLate(HMODULE module, DWORD code) {
    FreeLibrary(module);
    SetEvent(hasLetGo);
    WaitForSingleObject(mayEnd, kDeadline);
    ExitThread(code);
}

TEST_F(CardFreedAfterUnplug, DoesNotWaitForTheEndOfItsThread) {
    const UniqueHandle letGo(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const UniqueHandle end(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    hasLetGo = letGo.Get();
    mayEnd = end.Get();
    const std::size_t threads = CountThreads();
    LoadTimeHooks hooks;
    hooks.Add("KERNEL32.dll", "FreeLibraryAndExitThread", &EndLate);
    LoadedLibrary library;
    ASSERT_TRUE(hooks.Missing().empty());
    ASSERT_TRUE(EnableReader(library));
    reader_.Unplug();
    ASSERT_EQ(WaitForSingleObject(letGo.Get(), kDeadline), DWORD{WAIT_OBJECT_0});
    const ULONGLONG begin = GetTickCount64();
    library.Unload();
    EXPECT_LT(GetTickCount64() - begin, 5000U);
    EXPECT_FALSE(IsLoaded());
    SetEvent(end.Get());
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() < threads; }));
}

}  // namespace
}  // namespace quarlin::test
