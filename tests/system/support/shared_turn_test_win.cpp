// SPDX-License-Identifier: Apache-2.0
// Turns are only worth something when they keep somebody out.
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "support/child_process_win.h"
#include "support/shared_turn_win.h"

namespace quarlin::test {
namespace {

using Use = SharedTurn::Use;

// A turn that no other run of these tests has; its file goes with it.
class OwnTurn {
  public:
    OwnTurn() : name_(L"test-" + std::to_wstring(GetCurrentProcessId())) {}
    OwnTurn(const OwnTurn&) = delete;
    OwnTurn& operator=(const OwnTurn&) = delete;
    ~OwnTurn() { DeleteFileW(SharedTurn::PathOf(name_).c_str()); }

    const std::wstring& Name() const { return name_; }

  private:
    std::wstring name_;
};

bool IsFree(const std::wstring& name, Use use) {
    try {
        const SharedTurn turn(name, use, 0);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

// Free for this process and for another one.
bool IsFreeForOthers(const std::wstring& name, Use use) {
    return RunChild("take_turn", {}, {name, use == Use::kShared ? L"shared" : L"alone"}).exitCode == 0;
}

QUARLIN_CHILD_MODE(take_turn) {
    const std::wstring name(arguments[0].begin(), arguments[0].end());
    return IsFree(name, arguments[1] == "shared" ? Use::kShared : Use::kExclusive) ? 0 : 1;
}

TEST(SharedTurnTest, KeepsOthersOutWhenItIsTakenAlone) {
    const OwnTurn own;
    const std::wstring& name = own.Name();
    {
        const SharedTurn turn(name, Use::kExclusive);
        EXPECT_FALSE(IsFree(name, Use::kShared));
        EXPECT_FALSE(IsFree(name, Use::kExclusive));
        EXPECT_FALSE(IsFreeForOthers(name, Use::kShared));
        EXPECT_FALSE(IsFreeForOthers(name, Use::kExclusive));
    }
    EXPECT_TRUE(IsFreeForOthers(name, Use::kExclusive));
}

TEST(SharedTurnTest, LetsThoseInWhoShareIt) {
    const OwnTurn own;
    const std::wstring& name = own.Name();
    {
        const SharedTurn turn(name, Use::kShared);
        EXPECT_TRUE(IsFree(name, Use::kShared));
        EXPECT_TRUE(IsFreeForOthers(name, Use::kShared));
        EXPECT_FALSE(IsFree(name, Use::kExclusive));
        EXPECT_FALSE(IsFreeForOthers(name, Use::kExclusive));
    }
    EXPECT_TRUE(IsFree(name, Use::kExclusive));
}

// Otherwise a stream of tests that share it would keep out the one that must not.
TEST(SharedTurnTest, IsNotSharedAnyMoreWhenSomebodyWaitsForItAlone) {
    const OwnTurn own;
    const std::wstring& name = own.Name();
    auto shared = std::make_unique<SharedTurn>(name, Use::kShared);
    std::atomic<bool> alone = false;
    std::thread waiting([&] {
        const SharedTurn turn(name, Use::kExclusive);
        alone = true;
    });
    EXPECT_TRUE(WaitUntil([&] { return !IsFree(name, Use::kShared); }));
    EXPECT_FALSE(alone);
    shared.reset();
    waiting.join();
    EXPECT_TRUE(alone);
}

QUARLIN_CHILD_MODE(die_with_turn) {
    const std::wstring name(arguments[0].begin(), arguments[0].end());
    const SharedTurn turn(name, Use::kExclusive);
    TerminateProcess(GetCurrentProcess(), 9);
    return 0;
}

TEST(SharedTurnTest, ComesBackFromAProcessThatDies) {
    const OwnTurn own;
    const std::wstring& name = own.Name();
    EXPECT_EQ(RunChild("die_with_turn", {}, {name}).exitCode, 9U);
    EXPECT_TRUE(WaitUntil([&] { return IsFree(name, Use::kExclusive); }));
}

}  // namespace
}  // namespace quarlin::test
