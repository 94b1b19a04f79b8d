// SPDX-License-Identifier: Apache-2.0
// How scans reach Java from the barcode family's thread.
#include "captured_output.h"
#include "failing_allocation.h"
#include "java_frame.h"

#include "jni/barcode_delivery.h"

#include "com_norvane_quarlin_bcr_CoreNatives.h"

#include <atomic>
#include <string_view>

namespace quarlin::test {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using jni::DeliverBarcodeEvent;

// A scan as the family hands it out: its bytes have no terminator, and a sanitizer stands behind them.
struct Scan {
    Scan(int device, std::string_view text, std::optional<std::string_view> symbologyText = "A0"sv)
        : data(text.begin(), text.end()) {
        if (symbologyText) {
            symbology.assign(symbologyText->begin(), symbologyText->end());
        }
        record = {device, symbologyText ? symbology.data() : nullptr, static_cast<std::int32_t>(symbology.size()),
                  data.data(), static_cast<std::int32_t>(data.size())};
    }

    std::vector<std::uint8_t> data;
    std::vector<std::uint8_t> symbology;
    QLBCR_BARCODE_DATA record{};
};

// What Java was given.
struct Event {
    int device;
    std::string text;
    int length;
    std::string bytes;
    std::string symbology;
    int symbologyLength;
    std::string symbologyBytes;

    bool operator==(const Event&) const = default;
};

void PrintTo(const Event& event, std::ostream* stream) {
    *stream << event.device << " \"" << event.text << "\" " << event.length << " \"" << event.symbology << "\" "
            << event.symbologyLength;
}

class BarcodeDelivery : public JavaFrame {
  protected:
    void SetUp() override {
        vm.DefineException(kBarcodeFailure);
        vm.DefineClass(kBarcodeEvents)
            .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V",
                          [this](JavaCall& call) { Take(call); });
        vm.DefineClass("test/Empty");
        Initialise(kBarcodeEvents);
    }

    jboolean Initialise(const char* events) {
        NativeCall call(vm);
        return Java_com_norvane_quarlin_bcr_CoreNatives_nInit(call.Env(), call.Class("java/lang/Object"),
                                                              call.Class(kBarcodeFailure), call.Class(events));
    }

    // On a thread of its own, which the VM knows neither before nor afterwards.
    void Deliver(const Scan& scan) {
        OnLibraryThread([&] {
            DeliverBarcodeEvent(&scan.record);
            EXPECT_FALSE(vm.IsAttached());
        });
    }

    std::vector<Event> TakeEvents() { return std::exchange(events_, {}); }

    // Runs in "Java" with each scan.
    std::function<void()> listener = [] {};

  private:
    void Take(const JavaCall& call) {
        const auto text = [](const std::vector<std::uint8_t>& bytes) {
            return std::string(bytes.begin(), bytes.end());
        };
        events_.push_back({call.Int(0), call.Text(1), call.Int(2), text(call.Bytes(3)), call.Text(4), call.Int(5),
                           text(call.Bytes(6))});
        listener();
    }

    std::vector<Event> events_;
};

TEST_F(BarcodeDelivery, AttachesTheThreadCallsTheMethodAndDetaches) {
    CapturedOutput output;
    Deliver({3, "4006381333931", "E0"});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{3, "4006381333931", 13, "4006381333931", "E0", 2, "E0"}}));
    EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>());
    EXPECT_EQ(output.Take(), "");
}

TEST_F(BarcodeDelivery, GivesAnEmptyScanAsItIs) {
    Deliver({-1, "", ""});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{-1, "", 0, "", "", 0, ""}}));
}

TEST_F(BarcodeDelivery, GivesAMissingSymbologyAsAnEmptyTextAndAnEmptyArray) {
    Deliver({0, "12", std::nullopt});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{0, "12", 2, "12", "", 0, ""}}));
}

TEST_F(BarcodeDelivery, ReadsNothingThroughNullPointersAndOfNegativeLengths) {
    Scan scan{0, "12"};
    scan.record.symbologyId = nullptr;
    Deliver(scan);
    scan.record.data = nullptr;
    Deliver(scan);
    scan = Scan{0, "12"};
    scan.record.dataLength = -1;
    scan.record.symbologyIdLength = -5;
    Deliver(scan);
    const auto events = TakeEvents();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].text, "12");
    EXPECT_EQ(events[0].symbology, "");
    EXPECT_EQ(events[0].symbologyBytes, "");
    EXPECT_EQ(events[1].text, "");
    EXPECT_EQ(events[1].bytes, "");
    EXPECT_EQ(events[2].bytes, "");
    EXPECT_EQ(events[2].symbologyBytes, "");
}

TEST_F(BarcodeDelivery, EndsTheTextsAtAZeroByteAndKeepsAllBytes) {
    Deliver({0, "ab\0cd"sv, "A\0"sv});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{0, "ab", 5, "ab\0cd"s, "A", 2, "A\0"s}}));
}

TEST_F(BarcodeDelivery, ReplacesInTheTextsWhatIsNoModifiedUtf8AndKeepsAllBytes) {
    Deliver({0, "caf\xE9 \xC3\xA9", "\xFF"});
    EXPECT_EQ(TakeEvents(),
              std::vector<Event>({{0, "caf\xEF\xBF\xBD \xC3\xA9", 7, "caf\xE9 \xC3\xA9", "\xEF\xBF\xBD", 1, "\xFF"}}));
    Deliver({0, "\xF0\x9F\x98\x80"});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{0, "\xF0\x9F\x98\x80", 4, "\xF0\x9F\x98\x80", "A0", 2, "A0"}}));
    Deliver({0, "\xED\xA0\xBD\xED\xB8\x80 \xE2\x82"});
    EXPECT_EQ(TakeEvents(), std::vector<Event>({{0, "\xF0\x9F\x98\x80 \xEF\xBF\xBD\xEF\xBF\xBD", 9,
                                                 "\xED\xA0\xBD\xED\xB8\x80 \xE2\x82", "A0", 2, "A0"}}));
}

TEST_F(BarcodeDelivery, GivesEveryByteValueWhole) {
    std::string all;
    for (int value = 0; value < 256; ++value) {
        all.push_back(static_cast<char>(value));
    }
    Deliver({0, all});
    const auto events = TakeEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].bytes, all);
    EXPECT_EQ(events[0].length, 256);
}

TEST_F(BarcodeDelivery, DropsAScanOnAThreadThatIsAttachedAndSaysSo) {
    const Scan scan{0, "12"};
    OnLibraryThread([&] {
        void* env = nullptr;
        ASSERT_EQ(vm.Vm()->AttachCurrentThread(&env, nullptr), JNI_OK);
        CapturedOutput output;
        DeliverBarcodeEvent(&scan.record);
        EXPECT_EQ(output.Take(), "Get JVM failed: 0\n");
        EXPECT_TRUE(vm.IsAttached());
        vm.Vm()->DetachCurrentThread();
    });
    EXPECT_EQ(TakeEvents(), std::vector<Event>());
    EXPECT_EQ(vm.CallsOf("DetachCurrentThread"), 1);
}

TEST_F(BarcodeDelivery, DropsAScanThatTheVmRefusesAndSaysWhy) {
    const std::vector<std::pair<jint, std::string>> rows{{JNI_EVERSION, "Version of JVM not supported"},
                                                         {JNI_ERR, "Get JVM failed: -1\n"},
                                                         {JNI_ENOMEM, "Get JVM failed: -4\n"}};
    for (const auto& [code, text] : rows) {
        vm.FailOn("GetEnv", 1, code);
        CapturedOutput output;
        Deliver({0, "12"});
        EXPECT_EQ(output.Take(), text);
    }
    vm.FailOn("AttachCurrentThread");
    CapturedOutput output;
    Deliver({0, "12"});
    EXPECT_EQ(output.Take(), "Failed to attach JVM");
    EXPECT_EQ(TakeEvents(), std::vector<Event>());
    EXPECT_EQ(vm.Threads(), ThreadCounts({0, 0, 0, 0}));
    EXPECT_EQ(vm.CallsOf("DetachCurrentThread"), 0);
}

TEST_F(BarcodeDelivery, DropsAScanWithoutAMethodToCall) {
    {
        CapturedOutput output;
        EXPECT_EQ(Initialise("test/Empty"), JNI_FALSE);
    }
    CapturedOutput output;
    Deliver({0, "12"});
    EXPECT_EQ(output.Take(), "Unable to find callback");
    EXPECT_EQ(vm.Threads().attached, 0);
}

TEST_F(BarcodeDelivery, DropsAScanBeforeTheGroupIsInitialised) {
    jni::bcrVm = nullptr;
    jni::bcrCallbackClass.Store({});
    CapturedOutput output;
    Deliver({0, "12"});
    EXPECT_EQ(output.Take(), "Cannot find JVM\n");
    EXPECT_EQ(vm.Threads(), ThreadCounts({0, 0, 0, 0}));
}

TEST_F(BarcodeDelivery, CallsTheClassThatWasRegisteredLast) {
    int calls = 0;
    vm.DefineClass("test/Events")
        .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V",
                      [&](JavaCall&) { ++calls; });
    Initialise("test/Events");
    Deliver({0, "12"});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(TakeEvents(), std::vector<Event>());
}

TEST_F(BarcodeDelivery, OutOfMemoryInTheVmLosesTheScanAlone) {
    for (const char* const entry : {"NewStringUTF", "NewByteArray"}) {
        for (const int nth : {1, 2}) {
            vm.FailOn(entry, nth);
            CapturedOutput output;
            Deliver({0, "lost"});
            EXPECT_EQ(output.Take(), "");
            EXPECT_TRUE(vm.TakeFailures());
            EXPECT_EQ(TakeEvents(), std::vector<Event>());
            const auto uncaught = vm.TakeUncaught();
            ASSERT_EQ(uncaught.size(), 1U);
            EXPECT_EQ(uncaught[0].className, "java/lang/OutOfMemoryError");
            Deliver({0, "next"});
            EXPECT_EQ(TakeEvents().size(), 1U);
        }
    }
    EXPECT_EQ(vm.Threads(), ThreadCounts({8, 0, 8, 0}));
}

TEST_F(BarcodeDelivery, OutOfMemoryInTheLibraryIsRaisedAsAnInternalError) {
    const Scan scan{0, std::string(100'000, 'x')};
    CapturedOutput output;
    OnLibraryThread([&] {
        const FailingAllocation failure(100'000);
        DeliverBarcodeEvent(&scan.record);
        EXPECT_TRUE(failure.Happened());
    });
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(TakeEvents(), std::vector<Event>());
    EXPECT_EQ(vm.TakeUncaught(),
              std::vector<JavaException>({{kBarcodeFailure, "Unknown,Error in sdfsdfsd,std::bad_alloc"}}));
    EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
}

TEST_F(BarcodeDelivery, AListenerThatThrowsHarmsNoLaterScan) {
    listener = [] { throw JavaThrow{"java/lang/IllegalStateException", "listener"}; };
    CapturedOutput output;
    Deliver({0, "1"});
    listener = [] {};
    Deliver({0, "2"});
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(TakeEvents().size(), 2U);
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>({{"java/lang/IllegalStateException", "listener"}}));
    EXPECT_EQ(vm.Threads(), ThreadCounts({2, 0, 2, 0}));
}

TEST_F(BarcodeDelivery, KeepsNoReferenceHoweverManyScans) {
    const Scan scan{1, "4006381333931", "E0"};
    const ReferenceCounts before = vm.References();
    OnLibraryThread([&] {
        for (int i = 0; i < 10'000; ++i) {
            DeliverBarcodeEvent(&scan.record);
        }
    });
    ReferenceCounts after = vm.References();
    EXPECT_LE(after.peakLocals, 4);
    after.peakLocals = before.peakLocals;
    EXPECT_EQ(after, before);
    EXPECT_EQ(TakeEvents().size(), 10'000U);
    EXPECT_EQ(vm.Threads(), ThreadCounts({10'000, 0, 10'000, 0}));
}

TEST_F(BarcodeDelivery, DeliversOnEightThreadsAtOnce) {
    constexpr int kThreads = 8;
    constexpr int kScans = 200;
    std::array<std::atomic<int>, kThreads> sums{};
    vm.DefineClass("test/Events")
        .StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V", [&](JavaCall& call) {
            const int device = call.Int(0);
            const std::string own(static_cast<std::size_t>(device) + 1, static_cast<char>('a' + device));
            if (call.Text(1) == own && call.Bytes(3).size() == own.size() && call.Text(4) == "A0") {
                ++sums.at(static_cast<std::size_t>(device));
            }
        });
    Initialise("test/Events");
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int device = 0; device < kThreads; ++device) {
        threads.emplace_back([&, device] {
            const Scan scan{device, std::string(static_cast<std::size_t>(device) + 1, static_cast<char>('a' + device))};
            ++ready;
            while (ready < kThreads) {
                std::this_thread::yield();
            }
            for (int i = 0; i < kScans; ++i) {
                DeliverBarcodeEvent(&scan.record);
            }
        });
    }
    // Another initialisation while scans arrive takes the place of the one before, whole.
    while (ready < kThreads) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Initialise("test/Events"), JNI_TRUE);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& sum : sums) {
        EXPECT_EQ(sum, kScans);
    }
    EXPECT_EQ(vm.Threads(), ThreadCounts({kThreads * kScans, 0, kThreads * kScans, 0}));
    EXPECT_EQ(vm.References().locals, 0);
}

}  // namespace

}  // namespace quarlin::test
