// SPDX-License-Identifier: Apache-2.0
// Threads that call everything at once.
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "support/lock_watch_win.h"
#include "support/rendezvous.h"

namespace quarlin::test {
namespace {

// A sequence of numbers that is the same in each run.
class Numbers {
  public:
    explicit Numbers(std::uint32_t seed) : state_(seed) {}
    std::uint32_t Next(std::uint32_t below) {
        state_ = state_ * 1664525 + 1013904223;
        return (state_ >> 8) % below;
    }

  private:
    std::uint32_t state_;
};

const std::vector<std::function<QLerr()>> kCalls = {
    [] { return QLBCR_Initialize(); },
    [] { return QLBCR_SelectDevice(0); },
    [] { return QLBCR_Uninitialize(); },
    [] { return QLBCR_Enable(); },
    [] { return QLBCR_Enable(); },
    [] { return QLBCR_Disable(); },
    [] {
        int count = 1;
        QLBCR_DEVICE_INFO info{};
        return QLBCR_GetBarcodeDevices(&info, &count);
    },
    [] {
        unsigned int enabled = 0;
        return QLBCR_IsEnabled(&enabled);
    },
    [] {
        std::array<char, 64> text{};
        unsigned int size = text.size();
        return QLBCR_GetDeviceName(text.data(), &size);
    },
    [] {
        std::array<char, 64> text{};
        unsigned int size = text.size();
        return QLBCR_GetDeviceFirmwareVersion(text.data(), &size);
    },
    [] { return QLBCR_SetCallback(ScanLog::Callback(0)); },
    [] { return QLBCR_SetCallback(ScanLog::Callback(1)); },
    [] { return QLBCR_StartScanning(); },
    [] { return QLBCR_StopScanning(); },
    [] { return QLBCR_EnableSymbology(1, L"ISBT"); },
    [] { return QLBCR_EnableSymbologies(0, BARCODE_SYMBOLOGY_QR); },
    [] { return QLBCR_SetTriggerMode(1); },
    [] {
        unsigned char enabled = 0;
        return QLBCR_IsHardwareTriggerEnabled(&enabled);
    },
    [] { return QLBCR_SetPrefixData(1, "a prefix that is longer than any small text"); },
    [] { return QLBCR_SetSuffixData(0, "s"); },
    [] {
        unsigned int flag = 0;
        std::array<char, QLBCR_TEXT_SIZE> text{};
        return QLBCR_GetPrefixData(&flag, text.data());
    },
    [] { return QLBCR_SetDataEditingMode(1, "t", "TT", 0, 0); },
};

// What calls may answer in the midst of others: every state's answers, and no others.
bool IsExpected(QLerr result) {
    return result == QLERR_OK || result == QLERR_INVALID_STATE;
}

class IntermecThreads : public IntermecTest {};

TEST_F(IntermecThreads, CallEverythingAtOnce) {
    constexpr std::uint32_t kThreads = 4;
    constexpr int kCallsEach = 1500;
    std::atomic<bool> done = false;
    std::atomic<int> unexpected = 0;
    // A callback of the stress calls the library, too.
    log_.DoInside([&](const QLBCR_BARCODE_DATA& scan) {
        unsigned int enabled = 0;
        QLBCR_IsEnabled(&enabled);
        QLBCR_StartScanning();
        unexpected += scan.dataLength < 1 || scan.deviceIndex != 0 ? 1 : 0;
    });
    std::thread scanning([&] {
        while (!done) {
            if (Engine().Use()->inbox.IsEmpty()) {
                machine_.ScanIntermec("text", "]C000");
            }
            SwitchToThread();
        }
    });
    std::vector<std::thread> threads;
    for (std::uint32_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            Numbers numbers(i);
            for (int n = 0; n < kCallsEach; ++n) {
                const QLerr result = kCalls[numbers.Next(static_cast<std::uint32_t>(kCalls.size()))]();
                if (!IsExpected(result)) {
                    ++unexpected;
                    ADD_FAILURE() << "code " << result << ": " << FetchLastError();
                }
                const Failure failure = FetchLastError();
                unexpected += failure.code == result ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    done = true;
    scanning.join();
    EXPECT_EQ(unexpected, 0);
    EXPECT_EQ(log_.MostAtOnce(), 1);
    // All is as it should be afterwards.
    log_.DoInside({});
    Finish();
    log_.Clear();
    Enable();
    machine_.ScanIntermec("text");
    EXPECT_EQ(log_.AwaitCount(1).text, "text");
}

TEST_F(IntermecThreads, HaveEachItsOwnError) {
    constexpr int kRounds = 200;
    Enable();
    Rendezvous rendezvous(2);
    const auto fail = [&](const std::function<QLerr()>& call, const Failure& expected) {
        for (int round = 0; round < kRounds; ++round) {
            rendezvous.Arrive();
            EXPECT_EQ(call(), expected.code);
            rendezvous.Arrive();
            EXPECT_EQ(FetchLastError(), expected);
        }
    };
    std::thread other([&] {
        fail([] { return QLBCR_Enable(); }, {QLERR_INVALID_STATE, "The device is already enabled"});
    });
    fail([] { return QLBCR_EnableSymbologies(1, 47); }, {QLERR_INTERNAL_ERROR, "Symbology could not enabled/disabled"});
    other.join();
    // A thread that has done nothing wrong has nothing to tell.
    std::thread third([] { EXPECT_EQ(FetchLastError(), Failure{}); });
    third.join();
}

// Frames of two threads do not mix in the buffers that the engines share.
TEST_F(IntermecThreads, DoNotMixTheirFrames) {
    constexpr int kRounds = 100;
    Enable();
    const auto work = [](unsigned int symbology) {
        for (int round = 0; round < kRounds; ++round) {
            EXPECT_EQ(QLBCR_EnableSymbologies(1, symbology), QLERR_OK);
            EXPECT_EQ(QLBCR_EnableSymbologies(0, symbology), QLERR_OK);
        }
    };
    std::thread other([&] { work(BARCODE_SYMBOLOGY_ISBT); });
    work(BARCODE_SYMBOLOGY_QR);
    other.join();
    std::map<std::string, int> counts;
    for (const std::string& call : Engine().TakeTexts()) {
        ++counts[call];
    }
    EXPECT_EQ(counts, (std::map<std::string, int>{{"SetupWrite 43 41 01 43 40 00 43 42 00", kRounds},
                                                  {"SetupWrite 43 41 00", kRounds},
                                                  {"SetupWrite 55 40 01", kRounds},
                                                  {"SetupWrite 55 40 00", kRounds}}));
}

// The family's lock lies around an engine's call, but not around initialising.
TEST_F(IntermecThreads, WaitForEachOtherOutsideOfInitialize) {
    Engine().HoldNext(IntermecFunction::kInitialize);
    std::thread initializing([] { EXPECT_EQ(QLBCR_Initialize(), QLERR_OK); });
    Engine().AwaitHeld();
    // From the state before.
    unsigned int enabled = 0;
    EXPECT_FAILURE(QLBCR_IsEnabled(&enabled), QLERR_INVALID_STATE, kNotInitialized);
    EXPECT_FAILURE(QLBCR_Enable(), QLERR_INVALID_STATE, kNotInitialized);
    EXPECT_FAILURE(QLBCR_SetPrefixData(1, ""), QLERR_INVALID_STATE, kNotInitialized);
    Engine().LetGo();
    initializing.join();
    EXPECT_EQ(BarcodeState(), 1);
}

TEST_F(IntermecThreads, WaitForAnEnginesCall) {
    Enable();
    Engine().HoldNext(IntermecFunction::kSetupWrite);
    std::thread switching([] { EXPECT_EQ(QLBCR_EnableSymbologies(1, 0), QLERR_OK); });
    Engine().AwaitHeld();
    std::atomic<bool> answered = false;
    {
        const LockWatch watch;
        std::thread asking([&] {
            EXPECT_EQ(BarcodeState(), 2);
            answered = true;
        });
        EXPECT_TRUE(watch.AwaitWaiters(1));
        EXPECT_FALSE(answered);
        Engine().LetGo();
        asking.join();
    }
    switching.join();
    EXPECT_TRUE(answered);
}

// The listener has neither lock, but requests and answers go through one pair of buffers.
TEST_F(IntermecThreads, KeepAScanWaitingForAnEnginesCall) {
    Enable();
    Engine().HoldNext(IntermecFunction::kSetupWrite);
    std::thread switching([] { EXPECT_EQ(QLBCR_EnableSymbologies(1, 0), QLERR_OK); });
    Engine().AwaitHeld();
    {
        const LockWatch watch;
        machine_.ScanIntermec("text");
        EXPECT_TRUE(watch.AwaitWaiters(1));
        EXPECT_EQ(Engine().Peek(), Texts{});
        Engine().LetGo();
        switching.join();
        EXPECT_EQ(log_.AwaitCount(1).text, "text");
    }
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"SetupWrite 40 40 01", "GetBarcodeDataEx"}));
}

}  // namespace
}  // namespace quarlin::test
