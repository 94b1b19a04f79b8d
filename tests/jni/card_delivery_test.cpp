// SPDX-License-Identifier: Apache-2.0
// How swipes reach Java from the card reader's thread.
#include "captured_output.h"
#include "java_frame.h"

#include "jni/card_delivery.h"

#include "com_norvane_quarlin_msr_MagStripeReader.h"

#include <algorithm>
#include <cstring>

namespace quarlin::test {

namespace {

using jni::DeliverCardSwipe;

constexpr const char* kTrack = "com/norvane/quarlin/msr/MagStripeTrackData";
constexpr const char* kSwipe = "com/norvane/quarlin/msr/MagStripeData";
constexpr const char* kSwipeConstructor =
    "([Lcom/norvane/quarlin/msr/MagStripeTrackData;[Lcom/norvane/quarlin/msr/MagStripeTrackData;[BZZ)V";

using Bytes = std::vector<std::uint8_t>;

// A swipe as the family hands it out. The buffers are longer than their texts, as those of readers are.
struct Swipe {
    explicit Swipe(std::vector<Bytes> trackBuffers = {{'%', 'B', '4', '?', 0, 0}, {';', '4', '?', 0}},
                   std::vector<Bytes> maskedBuffers = {{'%', '*', '?', 0}}, Bytes rawBytes = {1, 0, 255})
        : trackBytes(std::move(trackBuffers)), maskedBytes(std::move(maskedBuffers)), raw(std::move(rawBytes)) {
        Fill(trackBytes, tracks);
        Fill(maskedBytes, masked);
        record = {static_cast<std::int32_t>(tracks.size()),
                  tracks.data(),
                  static_cast<std::int32_t>(masked.size()),
                  masked.data(),
                  raw.size(),
                  raw.data(),
                  true,
                  false};
    }

    static void Fill(std::vector<Bytes>& from, std::vector<MagStripeTrackData>& to) {
        for (Bytes& buffer : from) {
            to.push_back({static_cast<std::int32_t>(buffer.size()), static_cast<std::int32_t>(buffer.size() / 2),
                          buffer.data()});
        }
    }

    std::vector<Bytes> trackBytes;
    std::vector<Bytes> maskedBytes;
    Bytes raw;
    std::vector<MagStripeTrackData> tracks;
    std::vector<MagStripeTrackData> masked;
    MagStripeData record{};
};

class CardDelivery : public JavaFrame {
  protected:
    void SetUp() override {
        vm.DefineClass(kTrack).Constructor("(II[B)V");
        vm.DefineClass(kSwipe).Constructor(kSwipeConstructor);
        vm.DefineClass(kSwipeEvents)
            .StaticMethod("onMagStripeSwipe", "(Lcom/norvane/quarlin/msr/MagStripeData;)V", [this](JavaCall& call) {
                swipes_.push_back(call.Object(0));
                listener();
            });
        vm.DefineClass("test/Empty");
        Initialise(kSwipeEvents);
        flat.TakeCalls();
    }

    void Initialise(const char* events) {
        NativeCall call(vm);
        Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Initialize(call.Env(), call.Class("java/lang/Object"),
                                                                       call.Class("test/Empty"), call.Class(events));
    }

    // On a thread of its own, which the VM knows neither before nor afterwards. Nothing is ever printed.
    void Deliver(const Swipe& swipe) {
        CapturedOutput output;
        OnLibraryThread([&] {
            DeliverCardSwipe(&swipe.record);
            EXPECT_FALSE(vm.IsAttached());
        });
        EXPECT_EQ(output.Take(), "");
    }

    std::vector<JavaRef> TakeSwipes() { return std::exchange(swipes_, {}); }

    // Runs in "Java" with each swipe.
    std::function<void()> listener = [] {};

  private:
    std::vector<JavaRef> swipes_;
};

void ExpectTracks(const JavaValue& array, const std::vector<MagStripeTrackData>& tracks) {
    const JavaRef reference = std::get<JavaRef>(array);
    const std::vector<JavaRef> objects = ObjectsOf(reference);
    EXPECT_EQ(reference->type->Name(), std::string("[L") + kTrack + ";");
    ASSERT_EQ(objects.size(), tracks.size());
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        ASSERT_TRUE(objects[i]);
        EXPECT_EQ(objects[i]->constructor, "(II[B)V");
        EXPECT_EQ(std::get<jint>(objects[i]->arguments[0]), tracks[i].bufferSize);
        EXPECT_EQ(std::get<jint>(objects[i]->arguments[1]), tracks[i].length);
        EXPECT_EQ(BytesOf(std::get<JavaRef>(objects[i]->arguments[2])),
                  Bytes(tracks[i].data, tracks[i].data + tracks[i].bufferSize));
    }
}

void ExpectSwipe(const JavaRef& object, const Swipe& swipe) {
    ASSERT_TRUE(object);
    EXPECT_EQ(object->type->Name(), kSwipe);
    EXPECT_EQ(object->constructor, kSwipeConstructor);
    ExpectTracks(object->arguments[0], swipe.tracks);
    ExpectTracks(object->arguments[1], swipe.masked);
    EXPECT_EQ(BytesOf(std::get<JavaRef>(object->arguments[2])), swipe.raw);
    EXPECT_EQ(std::get<jboolean>(object->arguments[3]), swipe.record.isEncrypted ? JNI_TRUE : JNI_FALSE);
    EXPECT_EQ(std::get<jboolean>(object->arguments[4]), swipe.record.isValid ? JNI_TRUE : JNI_FALSE);
}

TEST_F(CardDelivery, AttachesTheThreadBuildsTheRecordAndDetaches) {
    const Swipe swipe;
    Deliver(swipe);
    const auto swipes = TakeSwipes();
    ASSERT_EQ(swipes.size(), 1U);
    ExpectSwipe(swipes[0], swipe);
    EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
    EXPECT_EQ(flat.TakeCalls(), Calls({"QLMSR_GetMagTekExtras(record)"}));
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>());
}

TEST_F(CardDelivery, TellsEncryptedAndValidApart) {
    Swipe swipe;
    swipe.record.isEncrypted = false;
    swipe.record.isValid = true;
    Deliver(swipe);
    ExpectSwipe(TakeSwipes().at(0), swipe);
}

TEST_F(CardDelivery, GivesASwipeWithoutAnythingAsEmptyArrays) {
    Swipe swipe({}, {}, {});
    swipe.record.tracks = nullptr;
    swipe.record.maskedTracks = nullptr;
    swipe.record.raw = nullptr;
    Deliver(swipe);
    ExpectSwipe(TakeSwipes().at(0), swipe);
}

TEST_F(CardDelivery, GivesATrackWithoutABufferAsAnEmptyArray) {
    Swipe swipe({{}}, {}, {7});
    swipe.tracks[0] = {0, 0, nullptr};
    swipe.record.tracks = swipe.tracks.data();
    Deliver(swipe);
    ExpectSwipe(TakeSwipes().at(0), swipe);
}

TEST_F(CardDelivery, ReadsNothingThroughNullPointersAndOfNegativeCounts) {
    Swipe swipe;
    swipe.tracks[0].data = nullptr;
    swipe.tracks[1].bufferSize = -1;
    swipe.record.maskedTrackCount = -1;
    swipe.record.raw = nullptr;
    Deliver(swipe);
    const JavaRef object = TakeSwipes().at(0);
    const auto tracks = ObjectsOf(std::get<JavaRef>(object->arguments[0]));
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(BytesOf(std::get<JavaRef>(tracks[0]->arguments[2])), Bytes());
    EXPECT_EQ(BytesOf(std::get<JavaRef>(tracks[1]->arguments[2])), Bytes());
    EXPECT_EQ(ObjectsOf(std::get<JavaRef>(object->arguments[1])).size(), 0U);
    EXPECT_EQ(BytesOf(std::get<JavaRef>(object->arguments[2])), Bytes());
}

TEST_F(CardDelivery, AsksForTheExtrasInAZeroedBufferEachTime) {
    std::vector<bool> zeroed;
    const void* buffer = nullptr;
    flat.Does("QLMSR_GetMagTekExtras", [&](const MagStripeData*, MagTekExtras* extras) -> QLerr {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(extras);
        zeroed.push_back(std::all_of(bytes, bytes + sizeof *extras, [](unsigned char byte) { return byte == 0; }));
        EXPECT_TRUE(buffer == nullptr || buffer == extras);
        buffer = extras;
        std::memset(extras, 0xEE, sizeof *extras);
        return QLERR_OK;
    });
    const Swipe swipe;
    Deliver(swipe);
    Deliver(swipe);
    EXPECT_EQ(zeroed, std::vector<bool>({true, true}));
}

TEST_F(CardDelivery, DeliversWithoutExtrasAndLeavesNoErrorBehind) {
    flat.Fails("QLMSR_GetMagTekExtras", QLERR_INVALID_ARGUMENT, "not a MagTek record");
    const Swipe swipe;
    OnLibraryThread([&] {
        DeliverCardSwipe(&swipe.record);
        EXPECT_EQ(flat.Error(), std::nullopt);
    });
    ExpectSwipe(TakeSwipes().at(0), swipe);
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>());
    EXPECT_EQ(vm.CallsOf("ThrowNew"), 1);
}

TEST_F(CardDelivery, DropsASwipeOnAThreadThatIsAttachedAndDetachesIt) {
    const Swipe swipe;
    CapturedOutput output;
    OnLibraryThread([&] {
        void* env = nullptr;
        ASSERT_EQ(vm.Vm()->AttachCurrentThread(&env, nullptr), JNI_OK);
        DeliverCardSwipe(&swipe.record);
        EXPECT_FALSE(vm.IsAttached());
    });
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(TakeSwipes(), std::vector<JavaRef>());
    EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
    EXPECT_EQ(flat.TakeCalls(), Calls());
}

TEST_F(CardDelivery, DropsASwipeThatTheVmRefusesAndDetachesAllTheSame) {
    int detaches = 0;
    for (const jint code : {JNI_EVERSION, JNI_ERR, JNI_OK}) {
        vm.FailOn("GetEnv", 1, code);
        Deliver(Swipe());
        EXPECT_EQ(vm.CallsOf("DetachCurrentThread"), ++detaches);
    }
    vm.FailOn("AttachCurrentThread");
    Deliver(Swipe());
    EXPECT_EQ(vm.CallsOf("DetachCurrentThread"), ++detaches);
    EXPECT_EQ(TakeSwipes(), std::vector<JavaRef>());
    EXPECT_EQ(vm.Threads(), ThreadCounts({0, 0, 0, 0}));
}

TEST_F(CardDelivery, DropsASwipeBeforeTheGroupIsInitialised) {
    jni::msrVm = nullptr;
    jni::msrCallbackClass.Store({});
    Deliver(Swipe());
    EXPECT_EQ(vm.Threads(), ThreadCounts({0, 0, 0, 0}));
}

TEST_F(CardDelivery, DropsASwipeWithoutAMethodToCall) {
    Initialise("test/Empty");
    Deliver(Swipe());
    EXPECT_EQ(TakeSwipes(), std::vector<JavaRef>());
    EXPECT_EQ(vm.Threads(), ThreadCounts({1, 0, 1, 0}));
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>());
}

TEST_F(CardDelivery, MissingClassesAndConstructorsLoseTheSwipeAlone) {
    for (const char* const name : {kTrack, kSwipe}) {
        vm.HideClass(name);
        Deliver(Swipe());
        EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>({{"java/lang/NoClassDefFoundError", name}}));
        vm.ShowClass(name);
    }
    // Before each of them the class of the callback is asked for its loader.
    for (const int nth : {2, 4}) {
        vm.FailOn("GetMethodID", nth);
        Deliver(Swipe());
        EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>({{"java/lang/NoSuchMethodError", "<init>"}}));
    }
    EXPECT_EQ(TakeSwipes(), std::vector<JavaRef>());
    Deliver(Swipe());
    EXPECT_EQ(TakeSwipes().size(), 1U);
}

TEST_F(CardDelivery, FindsClassesThatOnlyTheListenersClassLoaderHas) {
    // As in an application server: FindClass knows none of the application's classes on a thread without Java code.
    vm.DefineClass("java/lang/ClassLoader")
        .Method("loadClass", "(Ljava/lang/String;)Ljava/lang/Class;", [this](JavaCall& call) {
            std::u16string name = call.Object(0)->characters;
            std::ranges::replace(name, u'.', u'/');
            call.result = vm.Class(std::string(name.begin(), name.end())).object;
        });
    const JavaRef loader = vm.New("java/lang/ClassLoader");
    JavaRef asked;
    vm.Class("java/lang/Class").Method("getClassLoader", "()Ljava/lang/ClassLoader;", [&](JavaCall& call) {
        asked = call.self;
        call.result = loader;
    });
    vm.HideClass(kTrack);
    vm.HideClass(kSwipe);
    const Swipe swipe;
    Deliver(swipe);
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>());
    const auto swipes = TakeSwipes();
    ASSERT_EQ(swipes.size(), 1U);
    ExpectSwipe(swipes[0], swipe);
    EXPECT_EQ(asked, vm.Class(kSwipeEvents).object);

    // Classes of the same names elsewhere are others: the listener's method would not know them.
    vm.ShowClass(kTrack);
    vm.ShowClass(kSwipe);
    asked = nullptr;
    Deliver(swipe);
    EXPECT_EQ(TakeSwipes().size(), 1U);
    EXPECT_EQ(asked, vm.Class(kSwipeEvents).object);
    EXPECT_EQ(vm.CallsOf("FindClass"), 0);
}

TEST_F(CardDelivery, OutOfMemoryAtAnyStepLosesTheSwipeAlone) {
    // Two tracks and a masked one: three track objects with their bytes, two arrays of them, the raw bytes, the swipe.
    const std::vector<std::pair<const char*, int>> steps{
        {"NewObjectArray", 2}, {"NewByteArray", 4}, {"NewObject", 4}, {"SetObjectArrayElement", 3}};
    int deliveries = 0;
    for (const auto& [entry, count] : steps) {
        for (int nth = 1; nth <= count; ++nth) {
            vm.FailOn(entry, nth);
            Deliver(Swipe());
            ++deliveries;
            EXPECT_TRUE(vm.TakeFailures()) << entry << ' ' << nth;
            const auto uncaught = vm.TakeUncaught();
            ASSERT_EQ(uncaught.size(), 1U) << entry << ' ' << nth;
            EXPECT_EQ(uncaught[0].className, "java/lang/OutOfMemoryError");
            EXPECT_EQ(TakeSwipes(), std::vector<JavaRef>());
        }
        // No step was forgotten above.
        vm.FailOn(entry, count + 1);
        Deliver(Swipe());
        ++deliveries;
        EXPECT_FALSE(vm.TakeFailures()) << entry;
        EXPECT_EQ(TakeSwipes().size(), 1U);
    }
    EXPECT_EQ(vm.Threads(), ThreadCounts({deliveries, 0, deliveries, 0}));
}

TEST_F(CardDelivery, AListenerThatThrowsHarmsNoLaterSwipe) {
    listener = [] { throw JavaThrow{"java/lang/IllegalStateException", "listener"}; };
    Deliver(Swipe());
    listener = [] {};
    Deliver(Swipe());
    EXPECT_EQ(TakeSwipes().size(), 2U);
    EXPECT_EQ(vm.TakeUncaught(), std::vector<JavaException>({{"java/lang/IllegalStateException", "listener"}}));
}

TEST_F(CardDelivery, NeedsNoMoreReferencesForMoreTracks) {
    Deliver(Swipe(std::vector<Bytes>(100, Bytes(112, 'x')), std::vector<Bytes>(100, Bytes(112, '*'))));
    EXPECT_EQ(ObjectsOf(std::get<JavaRef>(TakeSwipes().at(0)->arguments[0])).size(), 100U);
    EXPECT_LE(vm.References().peakLocals, 8);
}

TEST_F(CardDelivery, KeepsNoReferenceHoweverManySwipes) {
    const Swipe swipe;
    const ReferenceCounts before = vm.References();
    OnLibraryThread([&] {
        for (int i = 0; i < 10'000; ++i) {
            DeliverCardSwipe(&swipe.record);
        }
    });
    ReferenceCounts after = vm.References();
    after.peakLocals = before.peakLocals;
    EXPECT_EQ(after, before);
    EXPECT_EQ(TakeSwipes().size(), 10'000U);
    EXPECT_EQ(vm.Threads(), ThreadCounts({10'000, 0, 10'000, 0}));
}

TEST_F(CardDelivery, FollowsASwipeFromOneThreadToTheNext) {
    // Two readers have two threads, and their swipes never overlap.
    const Swipe swipe;
    for (int i = 0; i < 16; ++i) {
        Deliver(swipe);
    }
    EXPECT_EQ(TakeSwipes().size(), 16U);
    EXPECT_EQ(vm.Threads(), ThreadCounts({16, 0, 16, 0}));
}

}  // namespace

}  // namespace quarlin::test
