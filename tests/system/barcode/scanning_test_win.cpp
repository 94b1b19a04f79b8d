// SPDX-License-Identifier: Apache-2.0
// One scan for each start.
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kOn = "ControlCommand 20 40 01";
constexpr const char* kOff = "ControlCommand 20 40 00";
constexpr const char* kFetch = "GetBarcodeDataEx";

class IntermecScanning : public EnabledIntermec {
  protected:
    void Start() { EXPECT_SUCCESS(QLBCR_StartScanning()); }
    // One scan, delivered.
    void Scan(const char* text = "text") {
        const std::size_t count = log_.Count();
        machine_.ScanIntermec(text);
        EXPECT_EQ(log_.AwaitCount(count + 1).text, text);
        log_.AwaitQuiet();
    }
    std::uint32_t Decoding() { return Engine().Use()->decoding; }
};

TEST_F(IntermecScanning, EndsWithItsScan) {
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
    EXPECT_EQ(Decoding(), 1U);
    Scan();
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kFetch, kOff}));
    EXPECT_EQ(Decoding(), 0U);
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, IsNotStartedTwice) {
    Start();
    Engine().TakeCalls();
    Start();
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    Scan();
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kFetch, kOff}));
}

TEST_F(IntermecScanning, OfTheTriggerSendsNothing) {
    Scan("one");
    Scan("two");
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kFetch, kFetch}));
}

TEST_F(IntermecScanning, CannotBeStartedInsideTheCallbackOfItsScan) {
    Start();
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { EXPECT_SUCCESS(QLBCR_StartScanning()); });
    Scan();
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kFetch, kOff}));
    log_.DoInside({});
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, CanBeStoppedInsideTheCallbackOfItsScan) {
    Start();
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { EXPECT_SUCCESS(QLBCR_StopScanning()); });
    Scan();
    // A second scan's fetch shows that nothing more has come for the first.
    log_.DoInside({});
    Scan();
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kFetch, kOff, kFetch}));
}

TEST_F(IntermecScanning, IsAlwaysStopped) {
    EXPECT_SUCCESS(QLBCR_StopScanning());
    EXPECT_SUCCESS(QLBCR_StopScanning());
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOff, kOff}));
    Start();
    EXPECT_SUCCESS(QLBCR_StopScanning());
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kOff}));
    EXPECT_EQ(Decoding(), 0U);
    Scan("of the trigger");
    Scan("of the trigger, too");
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kFetch, kFetch}));
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, CanBeStartedAgainAfterARefusedStart) {
    Engine().Refuse(IntermecFunction::kControlCommand, 0x8000, 2);
    EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INTERNAL_ERROR, "Unable turn on barcode decoding.");
    EXPECT_FAILURE(QLBCR_StartScanning(), QLERR_INTERNAL_ERROR, "Unable turn on barcode decoding.");
    EXPECT_EQ(BarcodeState(), 2);
    Start();
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kOn, kOn}));
    Scan();
    Engine().AwaitCalls(kOff);
}

TEST_F(IntermecScanning, CanBeStartedAgainAfterARefusedStop) {
    Start();
    Engine().Refuse(IntermecFunction::kControlCommand, 0x8000, 1);
    EXPECT_FAILURE(QLBCR_StopScanning(), QLERR_INTERNAL_ERROR, "Unable turn off barcode decoding.");
    EXPECT_EQ(BarcodeState(), 2);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kOff}));
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, GoesOnWhenTheEngineDoesNotTurnOff) {
    Start();
    Engine().Refuse(IntermecFunction::kControlCommand, 1, 1);
    Scan();
    Engine().AwaitCalls(kOff);
    Engine().TakeCalls();
    EXPECT_EQ(FetchLastError(), Failure{});
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
    Scan();
    Engine().AwaitCalls(kOff);
}

TEST_F(IntermecScanning, EndsWithDisabling) {
    Start();
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Enable());
    Engine().TakeCalls();
    Scan("of the trigger");
    Scan("of the trigger, too");
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kFetch, kFetch}));
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, GoesOnWhenDisablingIsRefused) {
    Start();
    Engine().Refuse(IntermecFunction::kDisconnect, 1, 1);
    EXPECT_FAILURE(QLBCR_Disable(), QLERR_INTERNAL_ERROR, "Unable to disconnect barcode.");
    Engine().TakeCalls();
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    Scan();
    Engine().AwaitCalls(kOff);
}

TEST_F(IntermecScanning, EndsWithAScanThatHasNoText) {
    Start();
    machine_.ScanIntermec("");
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kFetch, kOff}));
    EXPECT_EQ(log_.Count(), 0U);
    Start();
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

TEST_F(IntermecScanning, EndsThoughTheCallbackThrows) {
    Start();
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { throw std::runtime_error("a callback's own"); });
    Scan();
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(Engine().TakeTexts(), (Texts{kOn, kFetch, kOff}));
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { throw 5; });
    Start();
    Scan();
    Engine().AwaitCalls(kOff);
    log_.DoInside({});
    Scan("and the next one comes");
}

TEST_F(IntermecScanning, IsStartedByOneOfManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([] { EXPECT_EQ(QLBCR_StartScanning(), QLERR_OK); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(Engine().TakeTexts(), Texts{kOn});
}

}  // namespace
}  // namespace quarlin::test
