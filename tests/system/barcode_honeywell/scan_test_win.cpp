// SPDX-License-Identifier: Apache-2.0
// The way of a scan from the engine's event to the callback.
#include <cstddef>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "barcode_honeywell/honeywell_test_win.h"
#include "barcode_support/sound_watch_win.h"

namespace quarlin::test {
namespace {

using namespace std::string_literals;

// What the listener window answers to a message.
LRESULT Tell(const wchar_t* message, WPARAM wParam, LPARAM lParam) {
    return SendMessageW(FindListenerWindow(), RegisterWindowMessageW(message), wParam, lParam);
}
LRESULT TellScan(std::size_t length, const void* data) {
    return Tell(L"WM_RAW_DATA", length, reinterpret_cast<LPARAM>(data));
}

class HoneywellScan : public EnabledHoneywell {
  protected:
    void SetUp() override {
        EnabledHoneywell::SetUp();
        // What a test tells the window by itself would overtake the post with which a connection begins.
        Received("first");
        log_.Clear();
    }

    // What comes of a scan, when the ones before it have come.
    ReceivedScan Received(std::string_view text, std::string_view symbologyId = {}) {
        const std::size_t before = log_.Count();
        Scan(text, symbologyId);
        return log_.AwaitCount(before + 1);
    }
};

TEST_F(HoneywellScan, ComesWithItsSymbologyIdentifier) {
    const ReceivedScan scan = Received("4006381333931", "]E000");
    EXPECT_EQ(scan.text, "4006381333931");
    EXPECT_EQ(scan.symbologyId, "]E000");
    EXPECT_EQ(scan.deviceIndex, 0);
    EXPECT_EQ(scan.callback, 0);
}

TEST_F(HoneywellScan, KeepsTheFiveBytesOfItsIdentifierAsTheyAre) {
    EXPECT_EQ(Received("a", "]Q1").symbologyId, "]Q1\0\0"s);
    EXPECT_EQ(Received("a", "]").symbologyId, "]\0\0\0\0"s);
    EXPECT_EQ(Received("a", "]\xFF\x01 ]").symbologyId, "]\xFF\x01 ]");
}

TEST_F(HoneywellScan, ComesWithoutAnIdentifierThatDoesNotBeginAsOne) {
    for (const char* const id : {"", "Q1000", "[Q1", " ]Q1", "\xDDQ1"}) {
        const ReceivedScan scan = Received("text", id);
        EXPECT_EQ(scan.text, "text");
        EXPECT_FALSE(scan.hasSymbologyId) << id;
        EXPECT_EQ(scan.symbologyId, "");
    }
}

TEST_F(HoneywellScan, ComesOnTheListenersThread) {
    const DWORD listener = GetWindowThreadProcessId(FindListenerWindow(), nullptr);
    EXPECT_NE(listener, GetCurrentThreadId());
    EXPECT_EQ(Received("a").thread, listener);
    EXPECT_EQ(Received("b").thread, listener);
}

TEST_F(HoneywellScan, EndsAtItsTerminatorWhateverItsLength) {
    EXPECT_EQ(Received("ab\0cd"s, "]A0").text, "ab");
    // The identifier is looked for where the length points.
    std::string bytes = "123]Q1456"s;
    bytes += '\0';
    bytes += "]C0..";
    EXPECT_EQ(TellScan(2, bytes.data()), 0);
    const ReceivedScan scan = log_.AwaitCount(2);
    EXPECT_EQ(scan.text, "123]Q1456");
    EXPECT_EQ(scan.symbologyId, "]Q145");
}

TEST_F(HoneywellScan, CarriesAnyBytes) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(Received(all, "]d2").text, all);
    const std::string longest(4096, 'x');
    EXPECT_EQ(Received(longest, "]Q1").text, longest);
    EXPECT_EQ(log_.Scans().back().symbologyId, "]Q1\0\0"s);
}

TEST_F(HoneywellScan, HasPrefixAndSuffixAroundItWhereverTheirPlacesAre) {
    for (const unsigned int prefixAsTop : {0U, 1U}) {
        for (const unsigned int suffixAsTop : {0U, 1U}) {
            ASSERT_SUCCESS(QLBCR_SetPrefixData(prefixAsTop, "<<"));
            ASSERT_SUCCESS(QLBCR_SetSuffixData(suffixAsTop, ">"));
            EXPECT_EQ(Received("code", "]A0").text, "<<code>");
        }
    }
}

TEST_F(HoneywellScan, IsEditedWithoutItsPrefixAndSuffix) {
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "0-"));
    ASSERT_SUCCESS(QLBCR_SetSuffixData(1, "-0"));
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, "0", "oo", 0, 0));
    EXPECT_EQ(Received("1020").text, "0-1oo2oo-0");
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_INSERT, "", "/", -1, 0));
    EXPECT_EQ(Received("1020").text, "0-102/0-0");
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_DELETE, "0", "", 0, 0));
    EXPECT_EQ(Received("1020").text, "0-12-0");
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_NONE, "0", "oo", 1, 1));
    EXPECT_EQ(Received("1020").text, "0-1020-0");
}

TEST_F(HoneywellScan, OfAnotherEventIsNone) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    for (const std::uint32_t type : {0U, 2U, 3U, 100U, 0x10001U, 0xFFFFFFFFU}) {
        Scan("no scan", "]A0", type);
    }
    Scan("scan");
    EXPECT_EQ(log_.AwaitCount(1).text, "scan");
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(log_.Count(), 1U);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StopReadingSession 0 0"});
}

TEST_F(HoneywellScan, WithoutDataIsDropped) {
    ASSERT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    Scan("", {}, HoneywellState::kScanType, sim::kScanNoData);
    Engine().AwaitFetched();
    EXPECT_EQ(TellScan(7, nullptr), 0);
    EXPECT_EQ(TellScan(0, nullptr), 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(Received("good").text, "good");
    EXPECT_EQ(log_.Count(), 1U);
}

// Two pages, of which the second cannot be read.
class CutMemory {
  public:
    static constexpr std::size_t kPage = 4096;

    CutMemory() : pages_(static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS))) {
        VirtualAlloc(pages_, kPage, MEM_COMMIT, PAGE_READWRITE);
    }
    CutMemory(const CutMemory&) = delete;
    CutMemory& operator=(const CutMemory&) = delete;
    ~CutMemory() { VirtualFree(pages_, 0, MEM_RELEASE); }

    // The bytes at the very end of what can be read.
    const char* Put(const std::string& bytes) const {
        return &pages_[kPage - bytes.copy(pages_ + kPage - bytes.size(), bytes.size())];
    }
    const char* Unreadable() const { return pages_ + kPage; }

  private:
    char* pages_;
};

// Any program can post the message.
TEST_F(HoneywellScan, ThatCannotBeReadIsDropped) {
    const CutMemory memory;
    EXPECT_EQ(TellScan(5, memory.Unreadable()), 0);
    EXPECT_EQ(TellScan(0, memory.Unreadable()), 0);
    EXPECT_EQ(TellScan(~std::size_t{0}, memory.Unreadable()), 0);
    EXPECT_EQ(Tell(L"WM_RAW_DATA", 3, 1), 0);
    EXPECT_EQ(Tell(L"WM_RAW_DATA", 3, -1), 0);
    // It has no terminator.
    EXPECT_EQ(TellScan(5, memory.Put("12345")), 0);
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_EQ(Received("good").text, "good");
}

TEST_F(HoneywellScan, WhoseIdentifierCannotBeReadComesWithoutOne) {
    const CutMemory memory;
    EXPECT_EQ(TellScan(5, memory.Put("12345\0"s)), 0);
    EXPECT_EQ(TellScan(5, memory.Put("12345\0]Q1"s)), 0);
    for (const std::size_t number : {1U, 2U}) {
        const ReceivedScan scan = log_.AwaitCount(number);
        EXPECT_EQ(scan.text, "12345");
        EXPECT_FALSE(scan.hasSymbologyId);
    }
    EXPECT_EQ(TellScan(5, memory.Put("12345\0]Q123"s)), 0);
    EXPECT_EQ(log_.AwaitCount(3).symbologyId, "]Q123");
}

TEST_F(HoneywellScan, WithALengthThatPointsNowhereIsDropped) {
    const char text[] = "12345\0]Q123";
    for (const std::size_t length :
         {std::size_t{0x7FFFFFFF}, std::size_t{1} << 40, ~std::size_t{0}, ~std::size_t{0} - 1, ~std::size_t{0} - 5}) {
        EXPECT_EQ(TellScan(length, text), 0);
        EXPECT_EQ(log_.Count(), 0U) << length;
    }
    const ReceivedScan scan = Received("good", "]A0");
    EXPECT_EQ(scan.text, "good");
    EXPECT_EQ(scan.symbologyId, "]A0\0\0"s);
}

TEST_F(HoneywellScan, OfAnIntermecEngineIsAnswered) {
    for (const WPARAM code : {WPARAM{100}, WPARAM{0}, WPARAM{101}}) {
        EXPECT_EQ(Tell(L"WM_ISCP_FRAME", code, 0), 0) << code;
    }
    EXPECT_EQ(Tell(L"WM_LOWLEVEL", 100, 0), 0);
    EXPECT_EQ(Tell(L"WM_MULTIFRAME_IN_PROGRESS", 100, 0), 0);
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
    EXPECT_EQ(machine_.Intermec().TakeTexts(), Texts{});
    EXPECT_EQ(Received("good").text, "good");
}

TEST_F(HoneywellScan, DoesNotComeWhileDisabled) {
    const char text[] = "12345\0]Q123";
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(TellScan(5, text), 0);
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(Received("good").text, "good");
    EXPECT_EQ(log_.Count(), 1U);
}

TEST_F(HoneywellScan, DoesNotComeBeforeTheFirstEnabling) {
    const char text[] = "12345\0]Q123";
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_SUCCESS(QLBCR_Initialize());
    EXPECT_EQ(TellScan(5, text), 0);
    EXPECT_SUCCESS(QLBCR_Enable());
    // Nobody receives it.
    EXPECT_EQ(TellScan(5, text), 0);
    EXPECT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback(1)));
    EXPECT_EQ(Received("good").callback, 1);
    EXPECT_EQ(log_.Count(), 1U);
}

TEST_F(HoneywellScan, ThatComesWhileDisablingDoesNoHarm) {
    for (int round = 0; round < 20; ++round) {
        Scan("late", "]A0", HoneywellState::kScanType, sim::kScanWhileDisconnecting);
        Engine().AwaitFetched();
        EXPECT_SUCCESS(QLBCR_Disable());
        EXPECT_EQ(BarcodeState(), 1);
        EXPECT_SUCCESS(QLBCR_Enable());
    }
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    const std::size_t count = log_.Count();
    EXPECT_LE(count, 20U);
    EXPECT_EQ(log_.Running(), 0);
}

TEST_F(HoneywellScan, IsNotLostNorDoubledAmongManyInARow) {
    std::vector<std::string> sent;
    for (int i = 0; i < 100; ++i) {
        sent.push_back("scan " + std::to_string(i));
        Scan(sent.back(), "]A0");
    }
    log_.AwaitCount(sent.size());
    EXPECT_EQ(log_.Texts(), sent);
    EXPECT_EQ(log_.MostAtOnce(), 1);
}

TEST_F(HoneywellScan, WaitsForACallbackThatTakesItsTime) {
    HeldCallback held(log_);
    Scan("first");
    held.AwaitHeld();
    for (int i = 0; i < 10; ++i) {
        Scan("later");
    }
    Engine().AwaitFetched();
    // The library answers meanwhile.
    EXPECT_SUCCESS(QLBCR_SetTriggerMode(1));
    EXPECT_EQ(log_.Count(), 1U);
    held.LetGo();
    log_.AwaitCount(11);
    EXPECT_EQ(log_.MostAtOnce(), 1);
}

TEST_F(HoneywellScan, DoesNotKeepDisablingWaiting) {
    HeldCallback held(log_);
    Scan("first");
    held.AwaitHeld();
    Scan("second");
    Engine().AwaitFetched();
    EXPECT_SUCCESS(QLBCR_Disable());
    EXPECT_EQ(BarcodeState(), 1);
    EXPECT_EQ(log_.Running(), 1);
    held.LetGo();
    EXPECT_SUCCESS(QLBCR_Uninitialize());
    EXPECT_EQ(log_.Running(), 0);
    EXPECT_EQ(log_.Count(), 1U);
}

TEST_F(HoneywellScan, LetsItsCallbackCallTheLibrary) {
    std::vector<QLerr> results;
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) {
        unsigned int size = 0;
        unsigned char enabled = 0;
        results = {QLBCR_EnableSymbologies(1, BARCODE_SYMBOLOGY_QR), QLBCR_GetDeviceFirmwareVersion(nullptr, &size),
                   QLBCR_SetTriggerMode(0), QLBCR_IsHardwareTriggerEnabled(&enabled), QLBCR_SetPrefixData(1, "next: ")};
        EXPECT_FAILURE(QLBCR_Disable(), QLERR_INVALID_STATE, kInsideCallback);
        EXPECT_FAILURE(QLBCR_Uninitialize(), QLERR_INVALID_STATE, kInsideCallback);
    });
    EXPECT_EQ(Received("a").text, "a");
    log_.AwaitQuiet();
    log_.DoInside({});
    EXPECT_EQ(results, std::vector<QLerr>(5, QLERR_OK));
    EXPECT_EQ(Engine().TakeTexts(),
              (Texts{"SendMenuCommand QRCENA1", "GetFirmwareVersion", "SendMenuCommand TRGMOD3"}));
    EXPECT_EQ(Received("b").text, "next: b");
}

TEST_F(HoneywellScan, WhoseCallbackThrowsIsTheOnlyOneConcerned) {
    log_.DoInside([](const QLBCR_BARCODE_DATA& scan) {
        if (scan.dataLength % 2 == 0) {
            throw std::runtime_error("a callback's own");
        }
        throw &scan;
    });
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    const Texts texts{"one", "two!", "three", "four", "five!!"};
    for (const std::string& text : texts) {
        Scan(text, "]A0");
    }
    log_.AwaitCount(texts.size());
    log_.AwaitQuiet();
    EXPECT_EQ(log_.Texts(), texts);
    // The first of them has ended the shot.
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StopReadingSession 0 0"});
    EXPECT_EQ(FetchLastError(), Failure{});
    EXPECT_EQ(BarcodeState(), 2);
    log_.DoInside({});
    EXPECT_EQ(Received("last").text, "last");
}

using HoneywellSingleShot = HoneywellScan;

TEST_F(HoneywellSingleShot, EndsAfterItsScan) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_SUCCESS(QLBCR_StartScanning());
        Received("shot");
        Engine().AwaitCalls("StopReadingSession 0 0");
        EXPECT_EQ(Engine().TakeTexts(), (Texts{"StartReadingSession 0 1", "StopReadingSession 0 0"}));
        // By the scanner's own trigger.
        Received("trigger");
        Received("trigger");
        EXPECT_EQ(Engine().TakeTexts(), Texts{});
    }
}

TEST_F(HoneywellSingleShot, SoundsThenDeliversThenEnds) {
    std::mutex lock;
    Texts order;
    const auto note = [&](const char* what) {
        const std::lock_guard held(lock);
        order.push_back(std::string(what) + (Engine().Peek().empty() ? "" : " too late"));
    };
    const SoundWatch sound;
    SoundWatch::WhenPlayed([&] { note("sound"); });
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) { note("callback"); });
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    Scan("shot");
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(order, (Texts{"sound", "callback"}));
    log_.DoInside({});
    SoundWatch::WhenPlayed({});
}

TEST_F(HoneywellSingleShot, EndsWithoutAWordForAnEmptyScan) {
    const SoundWatch sound;
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Engine().TakeCalls();
    Scan("", "]A0");
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(log_.Count(), 0U);
    EXPECT_EQ(SoundWatch::Paths(), std::vector<std::string>{});
    EXPECT_SUCCESS(QLBCR_SetPrefixData(1, "p"));
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Received("", "]A0").text, "p");
}

TEST_F(HoneywellSingleShot, IsPendingInItsCallback) {
    log_.DoInside([](const QLBCR_BARCODE_DATA&) { EXPECT_SUCCESS(QLBCR_StartScanning()); });
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Received("shot");
    Engine().AwaitCalls("StopReadingSession 0 0");
    EXPECT_EQ(Engine().TakeTexts(), (Texts{"StartReadingSession 0 1", "StopReadingSession 0 0"}));
    log_.DoInside({});
    EXPECT_SUCCESS(QLBCR_StartScanning());
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
}

TEST_F(HoneywellSingleShot, IsOverEvenWhenTheEngineDoesNotStop) {
    EXPECT_SUCCESS(QLBCR_StartScanning());
    Engine().Refuse(HoneywellFunction::kStopReadingSession, 0x8000);
    Received("shot");
    Engine().AwaitCalls("StopReadingSession 0 0");
    Engine().Obey();
    Engine().TakeCalls();
    // As soon as the listener has seen the refusal.
    Await("the end of the shot", [&] {
        EXPECT_SUCCESS(QLBCR_StartScanning());
        return !Engine().Peek().empty();
    });
    EXPECT_EQ(Engine().TakeTexts(), Texts{"StartReadingSession 0 1"});
    EXPECT_EQ(Received("next").text, "next");
}

}  // namespace
}  // namespace quarlin::test
