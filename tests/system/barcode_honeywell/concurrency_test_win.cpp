// SPDX-License-Identifier: Apache-2.0
// Threads that call all functions at once, while scans arrive.
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "support/import_hook_win.h"
#include "support/rendezvous.h"

namespace quarlin::test {
namespace {

using Call = std::function<QLerr()>;

QLerr ListForDotNet() {
    int result = 0;
    int count = 1;
    QLBCR_DEVICE_INFO* const list = QLBCR_dotNet_GetBarcodeDevices(&result, &count);
    SystemFunction<void(void*)>("msvcrt.dll", "free")(list);
    return list != nullptr ? QLERR_OK : QLERR_INVALID_STATE;
}

// All thirty.
const std::vector<Call> kCalls = {
    [] {
        QLBCR_DEVICE_INFO info{};
        int count = 1;
        return QLBCR_GetBarcodeDevices(&info, &count);
    },
    [] { return QLBCR_SelectDevice(0); },
    [] { return QLBCR_SetAllowExternalBarcodeDevice(0); },
    [] { return QLBCR_Initialize(); },
    [] { return QLBCR_Uninitialize(); },
    [] { return QLBCR_Enable(); },
    [] { return QLBCR_Disable(); },
    [] {
        unsigned int enabled = 0;
        return QLBCR_IsEnabled(&enabled);
    },
    [] {
        unsigned int type = 0;
        return QLBCR_GetDeviceType(&type);
    },
    [] {
        std::array<char, 128> text{};
        unsigned int size = text.size();
        return QLBCR_GetDeviceName(text.data(), &size);
    },
    [] {
        std::array<char, 128> text{};
        unsigned int size = text.size();
        return QLBCR_GetDeviceFirmwareVersion(text.data(), &size);
    },
    [] { return QLBCR_SetCallback(ScanLog::Callback()); },
    [] { return QLBCR_StartScanning(); },
    [] { return QLBCR_StopScanning(); },
    [] { return QLBCR_EnableSymbology(1, L"QR"); },
    [] { return QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_EAN_ISSN); },
    [] { return QLBCR_SetTriggerMode(1); },
    [] { return QLBCR_SetHardwareTriggerEnabled(1); },
    [] {
        unsigned char enabled = 0;
        return QLBCR_IsHardwareTriggerEnabled(&enabled);
    },
    [] { return QLBCR_SetSoundEnabled(0); },
    [] {
        unsigned char enabled = 0;
        return QLBCR_IsSoundEnabled(&enabled);
    },
    [] { return QLBCR_SetReadSuccessSoundFile(L"C:\\windows"); },
    [] { return QLBCR_SetPrefixData(1, "a prefix that is longer than any small text"); },
    [] { return QLBCR_SetSuffixData(1, "a suffix that is longer than any small text"); },
    [] {
        unsigned int asTop = 0;
        std::array<char, QLBCR_TEXT_SIZE> text{};
        return QLBCR_GetPrefixData(&asTop, text.data());
    },
    [] {
        unsigned int asTop = 0;
        std::array<char, QLBCR_TEXT_SIZE> text{};
        return QLBCR_GetSuffixData(&asTop, text.data());
    },
    [] { return QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, "t", "TT", 0, 0); },
    [] {
        unsigned int mode = 0;
        std::array<char, QLBCR_TEXT_SIZE> target{};
        std::array<char, QLBCR_TEXT_SIZE> content{};
        int start = 0;
        int end = 0;
        return QLBCR_GetDataEditingMode(&mode, target.data(), content.data(), &start, &end);
    },
    [] {
        int count = 0;
        return QLBCR_dotNet_GetNoOfDevices(&count);
    },
    &ListForDotNet,
};

// What a state that is not the wanted one, and an engine without the function, are answered with.
bool IsDocumented(QLerr result) {
    return result == QLERR_OK || result == QLERR_INVALID_STATE || result == QLERR_OP_UNSUPPORTED;
}

class HoneywellThreads : public HoneywellTest {
  protected:
    static constexpr std::uint32_t kThreads = 4;

    // Each thread makes so many rounds through all the calls, beginning at another one and going on by another step.
    void CallAll(const std::vector<Call>& calls, int rounds) {
        std::atomic<int> unexpected = 0;
        Rendezvous rendezvous(kThreads);
        std::vector<std::thread> threads;
        for (std::uint32_t thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&, thread] {
                // No step has a factor in common with the number of calls.
                constexpr std::array<std::size_t, kThreads> kSteps{1, 7, 11, 13};
                std::size_t next = thread * calls.size() / kThreads;
                rendezvous.Arrive();
                for (std::size_t n = 0; n < static_cast<std::size_t>(rounds) * calls.size(); ++n) {
                    next = (next + kSteps[thread]) % calls.size();
                    const QLerr result = calls[next]();
                    const Failure failure = FetchLastError();
                    if (!IsDocumented(result) || failure.code != result) {
                        ++unexpected;
                        ADD_FAILURE() << "call " << next << " answered " << result << ", record: " << failure;
                    }
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(unexpected, 0);
    }
};

// Shows codes until the end of the scope.
class SteadyScans {
  public:
    explicit SteadyScans(ScannerMachine& machine)
        : thread_([this, &machine] {
              while (!done_) {
                  if (machine.Honeywell().Use()->inbox.IsEmpty()) {
                      machine.ScanHoneywell("text", "]C0");
                  }
                  SwitchToThread();
              }
          }) {}
    SteadyScans(const SteadyScans&) = delete;
    SteadyScans& operator=(const SteadyScans&) = delete;
    ~SteadyScans() {
        done_ = true;
        thread_.join();
    }

  private:
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

TEST_F(HoneywellThreads, MayCallEverythingAtOnce) {
    std::atomic<int> unexpected = 0;
    log_.DoInside([&](const QLBCR_BARCODE_DATA& scan) {
        unexpected += scan.data == nullptr || scan.dataLength < 4 || scan.symbologyIdLength != 5 ? 1 : 0;
        unsigned int enabled = 0;
        unexpected += IsDocumented(QLBCR_IsEnabled(&enabled)) && IsDocumented(QLBCR_StartScanning()) ? 0 : 1;
    });
    {
        const SteadyScans scans(machine_);
        CallAll(kCalls, 40);
    }
    EXPECT_EQ(unexpected, 0);
    EXPECT_EQ(log_.MostAtOnce(), 1);
    Finish();
    log_.Clear();
    Enable();
    Scan("afterwards");
    EXPECT_EQ(log_.AwaitCount(1).text, "afterwards");
}

// The same from a state in which scans arrive all the time.
TEST_F(HoneywellThreads, LoseNoScanWhileTheyStayConnected) {
    constexpr std::size_t kScans = 300;
    std::vector<Call> calls;
    // Without those that end the connection, and those that change the texts.
    for (const std::size_t number : {0U,  1U,  2U,  3U,  5U,  7U,  8U,  9U,  10U, 11U, 12U, 13U, 14U,
                                     15U, 16U, 17U, 18U, 19U, 20U, 21U, 24U, 25U, 27U, 28U, 29U}) {
        calls.push_back(kCalls[number]);
    }
    // Steps that have no factor in common with their number.
    calls.resize(23);
    Enable();
    Texts sent;
    std::thread scanning([&] {
        for (std::size_t i = 0; i < kScans; ++i) {
            sent.push_back("scan " + std::to_string(i));
            Scan(sent.back(), "]A0");
        }
    });
    CallAll(calls, 30);
    scanning.join();
    log_.AwaitCount(kScans);
    EXPECT_EQ(log_.Texts(), sent);
    EXPECT_EQ(log_.MostAtOnce(), 1);
    EXPECT_EQ(BarcodeState(), 2);
}

}  // namespace
}  // namespace quarlin::test
