// SPDX-License-Identifier: Apache-2.0
// Swipes of a simulated reader on their way into Java.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "captured_output.h"
#include "jni/java_card_test_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

constexpr std::size_t kTrackRoom = 112;

struct TracksOfReport {
    std::size_t lengthAt[3];
    std::size_t dataAt[3];
};

constexpr TracksOfReport kTracks{{4, 5, 6}, {8, 120, 232}};
constexpr TracksOfReport kMaskedTracks{{506, 507, 508}, {509, 621, 733}};

class JavaSwipes : public JavaCardTest {
  protected:
    static void ExpectTracks(const Report& report, const JavaRef& array, const TracksOfReport& places) {
        const std::vector<JavaRef> tracks = ObjectsOf(array);
        ASSERT_EQ(tracks.size(), 3U);
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            SCOPED_TRACE("track " + std::to_string(i + 1));
            const std::vector<JavaValue>& arguments = tracks[i]->arguments;
            ASSERT_EQ(tracks[i]->type->Name(), kTrack);
            EXPECT_EQ(std::get<jint>(arguments.at(0)), static_cast<jint>(kTrackRoom));
            EXPECT_EQ(std::get<jint>(arguments.at(1)), static_cast<std::int8_t>(report[places.lengthAt[i]]));
            const auto data = report.begin() + static_cast<std::ptrdiff_t>(places.dataAt[i]);
            EXPECT_EQ(BytesOf(std::get<JavaRef>(arguments.at(2))), Report(data, data + kTrackRoom));
        }
    }
    // Everything that is a copy of the report.
    static void ExpectCopyOf(const Report& report, const JavaRef& swipe) {
        ASSERT_EQ(swipe->type->Name(), kSwipe);
        ASSERT_EQ(swipe->arguments.size(), 5U);
        ExpectTracks(report, std::get<JavaRef>(swipe->arguments[0]), kTracks);
        ExpectTracks(report, std::get<JavaRef>(swipe->arguments[1]), kMaskedTracks);
        EXPECT_EQ(BytesOf(std::get<JavaRef>(swipe->arguments[2])), report);
    }
    static bool IsEncrypted(const JavaRef& swipe) { return std::get<jboolean>(swipe->arguments.at(3)) != JNI_FALSE; }
    static bool IsValid(const JavaRef& swipe) { return std::get<jboolean>(swipe->arguments.at(4)) != JNI_FALSE; }

    TestReader reader_;
};

TEST_F(JavaSwipes, AreCopiesOfTheReadersReportsInEachForm) {
    using sim::magnesafe::Form;
    Begin();
    std::size_t count = 0;
    for (const Form form : {Form::kClear, Form::kMasked, Form::kEncrypted}) {
        SCOPED_TRACE(NameOf(form));
        SwipeOptions options;
        options.form = form;
        const Report report = reader_.Swipe(options);
        const JavaRef swipe = AwaitCount(++count);
        ExpectCopyOf(report, swipe);
        EXPECT_TRUE(IsValid(swipe));
        EXPECT_EQ(IsEncrypted(swipe), form == Form::kEncrypted);
    }
    for (const DWORD thread : Threads()) {
        EXPECT_NE(thread, GetCurrentThreadId());
    }
    EXPECT_EQ(vm_.Threads().attaches, 3);
    EXPECT_EQ(vm_.Threads().detaches, 3);
    EXPECT_EQ(vm_.References().locals, 0);
}

TEST_F(JavaSwipes, OfAnyBytesArriveUnchangedAndLeaveNothing) {
    constexpr std::size_t kWarmUp = 20;
    constexpr std::size_t kSwipes = 500;
    Begin();
    std::mt19937 random(7);
    std::size_t handles = 0;
    ReferenceCounts references;
    for (std::size_t count = 1; count <= kSwipes; ++count) {
        Report report(888);
        for (std::size_t at = 1; at < report.size(); ++at) {
            report[at] = static_cast<std::uint8_t>(random());
        }
        reader_.Send(report);
        ExpectCopyOf(report, AwaitCount(count));
        if (count == kWarmUp) {
            handles = CountOpenHandles();
            references = vm_.References();
        }
    }
    EXPECT_LE(CountOpenHandles(), handles + 4);
    EXPECT_EQ(vm_.References(), references);
    EXPECT_EQ(references.globals, 2);
    EXPECT_EQ(references.locals, 0);
    EXPECT_EQ(vm_.Threads().attaches, static_cast<int>(kSwipes));
    EXPECT_EQ(vm_.Threads().detaches, static_cast<int>(kSwipes));
}

JavaVM* vmOfCallbacks = nullptr;
std::atomic<int> attachedCallbacks = 0;

void AttachThread(const MagStripeData*) {
    void* env = nullptr;
    if (attachedCallbacks++ == 0) {
        vmOfCallbacks->AttachCurrentThread(&env, nullptr);
    }
}

// Somebody else has attached the reader's thread: that swipe is nobody's, nothing is said, and the thread is detached.
TEST_F(JavaSwipes, OfAThreadThatIsAttachedAreDroppedAndDetachIt) {
    library_ = std::make_unique<JavaLibrary>();
    ASSERT_EQ(Initialize(), std::nullopt);
    vmOfCallbacks = vm_.Vm();
    attachedCallbacks = 0;
    // Called before the one that delivers into Java.
    unsigned int id = 0;
    ASSERT_EQ(library_->QLMSR_AddCallback(&AttachThread, &id), QLERR_OK);
    ASSERT_EQ(Readers().size(), 1U);
    ASSERT_EQ(Enable(), std::nullopt);

    CapturedOutput output;
    reader_.Swipe();
    Await("the thread to be detached", [&] { return vm_.Threads().detaches == 1; });
    EXPECT_EQ(Count(), 0U);
    const Report report = reader_.Swipe();
    ExpectCopyOf(report, AwaitCount(1));
    EXPECT_EQ(output.Take(), "");
    EXPECT_EQ(vm_.Threads().attaches, 2);
    EXPECT_EQ(vm_.Threads().detaches, 2);
}

TEST_F(JavaSwipes, EndWithDisableAndComeAgainWithEnable) {
    Begin();
    for (std::size_t round = 1; round <= 3; ++round) {
        reader_.Swipe();
        AwaitCount(round);
        ASSERT_EQ(Disable(), std::nullopt);
        ASSERT_EQ(Enable(), std::nullopt);
    }
    EXPECT_EQ(Count(), 3U);
}

}  // namespace
}  // namespace quarlin::test
