// SPDX-License-Identifier: Apache-2.0
// The indexes of readers from one look to the next, whatever is plugged in and out.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <map>
#include <optional>
#include <random>
#include <string>

#include "card/card_session_win.h"
#include "support/last_error.h"
#include "support/wait_win.h"

namespace quarlin::test {
namespace {

using Serials = std::map<int, std::string>;

constexpr const char* kScanFailed = "fail MSR devices scan.";

TEST(CardReaderIndex, StaysWithTheReaderThatStays) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader a(WithSerial("A"));
    EXPECT_EQ(ListSerials(), (Serials{{0, "A"}}));
    const TestReader b(WithSerial("B"));
    EXPECT_EQ(ListSerials(), (Serials{{0, "A"}, {1, "B"}}));
    a.Unplug();
    EXPECT_EQ(ListSerials(), (Serials{{1, "B"}}));
    const TestReader c(WithSerial("C"));
    EXPECT_EQ(ListSerials(), (Serials{{0, "C"}, {1, "B"}}));
}

// Whether a reader has gone is decided after the new ones have got their indexes.
TEST(CardReaderIndex, OfAReaderThatLeftIsNotGivenToOneThatCameInTheSameLook) {
    const CardReaderTurn turn;
    const CardSession session;
    TestReader a(WithSerial("A"));
    const TestReader b(WithSerial("B"), TestReader::Start::kPlugged);
    ASSERT_EQ(ListReaders().size(), 2U);
    const int indexOfB = ListSerials()[0] == "B" ? 0 : 1;
    a.Unplug();
    TestReader c(WithSerial("C"));
    EXPECT_EQ(ListSerials(), (Serials{{indexOfB, "B"}, {2, "C"}}));
    const TestReader d(WithSerial("D"));
    EXPECT_EQ(ListSerials(), (Serials{{indexOfB, "B"}, {2, "C"}, {1 - indexOfB, "D"}}));
}

TEST(CardReaderIndex, FollowsTheRulesInAnyOrderOfPluggingAndUnplugging) {
    const CardReaderTurn turn;
    const CardSession session;
    std::deque<TestReader> readers;
    for (const char* const serial : {"A", "B", "C", "D"}) {
        readers.emplace_back(WithSerial(serial), TestReader::Start::kUnplugged);
    }
    Serials expected;
    std::mt19937 random(20);
    for (int step = 0; step < 12; ++step) {
        // One reader changes its state; sometimes another one goes at the same time.
        const std::size_t changed = random() % readers.size();
        const std::string serial(1, static_cast<char>('A' + changed));
        const auto isKnownAs = [](const Serials& serials, const std::string& name) {
            for (const auto& [index, known] : serials) {
                if (known == name) {
                    return std::optional<int>(index);
                }
            }
            return std::optional<int>();
        };
        Serials next = expected;
        const std::string leaving(1, static_cast<char>('A' + random() % readers.size()));
        if (const auto index = isKnownAs(expected, serial)) {
            readers[changed].Unplug();
            next.erase(*index);
        } else {
            readers[changed].Plug();
            int free = 0;
            while (expected.contains(free)) {
                ++free;
            }
            next[free] = serial;
        }
        if (const auto index = isKnownAs(expected, leaving); index && leaving != serial) {
            readers[static_cast<std::size_t>(leaving[0] - 'A')].Unplug();
            next.erase(*index);
        }
        // When nobody is there at all, everything known is forgotten at once.
        ASSERT_EQ(ListSerials(), next) << "step " << step;
        expected = next;
    }
}

TEST(CardReaderIndex, EqualToTheCountIsEnabledWhenItIsKnown) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader a(WithSerial("A"));
    ASSERT_EQ(ListReaders().size(), 1U);
    TestReader b(WithSerial("B"));
    ASSERT_EQ(ListReaders().size(), 2U);
    Select(1);
    a.Unplug();
    ASSERT_EQ(ListSerials(), (Serials{{1, "B"}}));
    // It was selected while it could be; now it could not.
    EXPECT_FAILURE(QLMSR_SelectDevice(1), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    AddCallback();
    EXPECT_SUCCESS(QLMSR_Enable());
    b.Swipe();
    log.AwaitCount(1);
    EXPECT_SUCCESS(QLMSR_Disable());
}

TEST(CardReaderIndex, LargerThanTheCountIsRefusedThoughItIsKnown) {
    const CardReaderTurn turn;
    const CardSession session;
    std::deque<TestReader> readers;
    for (const char* const serial : {"A", "B", "C"}) {
        readers.emplace_back(WithSerial(serial));
        ListReaders();
    }
    Select(2);
    Enable();
    readers[0].Unplug();
    readers[1].Unplug();
    ASSERT_EQ(ListSerials(), (Serials{{2, "C"}}));
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_FAILURE(QLMSR_Disable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    // Its state can be asked for all the same.
    EXPECT_TRUE(IsEnabled());
}

// The path of its interface is what a reader is known by.
TEST(CardReaderIdentity, IsKeptByAReaderThatIsPluggedInAgainBetweenTwoLooks) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings = WithSerial("OLD");
    settings.instance = "6&2f9a1b0c&0&0000";
    TestReader before(settings);
    ASSERT_EQ(ListSerials(), (Serials{{0, "OLD"}}));
    before.Unplug();
    settings.serial = "NEW";
    TestReader after(settings);
    EXPECT_EQ(ListSerials(), (Serials{{0, "OLD"}}));
    EXPECT_TRUE(after.TakeFeatureRequests().empty());
}

TEST(CardReaderIdentity, IsAskedForAgainWhenALookHasMissedTheReader) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings = WithSerial("OLD");
    settings.instance = "6&2f9a1b0c&0&0000";
    TestReader before(settings);
    ASSERT_EQ(ListSerials(), (Serials{{0, "OLD"}}));
    before.Unplug();
    ASSERT_EQ(ListSerials(), (Serials{}));
    settings.serial = "NEW";
    const TestReader after(settings);
    EXPECT_EQ(ListSerials(), (Serials{{0, "NEW"}}));
}

TEST(CardRescan, KeepsAReaderEnabledAndItsSwipesComing) {
    EnabledReader enabled;
    enabled.Reader().Swipe();
    enabled.Log().AwaitCount(1);
    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_TRUE(IsEnabled());
    const Report second = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(2).raw, second);
    // A reader that is disabled stays so.
    Disable();
    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(IsEnabled());
}

TEST(CardRescan, KeepsTheOthersWhenAnEnabledReaderIsGone) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader a(WithSerial("A"));
    ListReaders();
    TestReader b(WithSerial("B"));
    ListReaders();
    AddCallback();
    for (const int index : {0, 1}) {
        Select(index);
        Enable();
    }
    a.Unplug();
    EXPECT_EQ(ListSerials(), (Serials{{1, "B"}}));
    EXPECT_TRUE(IsEnabled());
    const Report report = b.Swipe();
    EXPECT_EQ(log.AwaitCount(1).raw, report);
}

TEST(CardRescan, WithNobodyPluggedInForgetsAnEnabledReader) {
    EnabledReader enabled;
    enabled.Reader().Unplug();
    EXPECT_EQ(ListSerials(), (Serials{}));
    bool state = true;
    EXPECT_FAILURE(QLMSR_IsEnabled(&state), QLERR_INTERNAL_ERROR, "fail check enabled status.");
    enabled.Reader().Plug();
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(IsEnabled());
}

TEST(CardRescan, LeavesAReaderStuckThatWasUnpluggedWhileEnabled) {
    ReaderSettings settings;
    settings.instance = "6&2f9a1b0c&0&0000";
    EnabledReader enabled(settings);
    enabled.Reader().Unplug();
    ASSERT_TRUE(WaitUntil([] { return !IsEnabled(); }));
    enabled.Reader().Plug();
    ASSERT_EQ(ListReaders().size(), 1U);
    EXPECT_FALSE(IsEnabled());
    EXPECT_FAILURE(QLMSR_Enable(), QLERR_INTERNAL_ERROR, "fail device enabled.");
    EXPECT_SUCCESS(QLMSR_Disable());
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = enabled.Reader().Swipe();
    EXPECT_EQ(enabled.Log().AwaitCount(1).raw, report);
}

TEST(CardRescan, DropsAllReadersWhenANewOneDoesNotAnswer) {
    const CardReaderTurn turn;
    SwipeLog log;
    const CardSession session;
    TestReader a(WithSerial("A"));
    ListReaders();
    TestReader b(WithSerial("B"));
    ListReaders();
    AddCallback();
    Select(1);
    Enable();
    TestReader silent(WithSerial("SILENT"));
    silent.Device().AddFault({.answer = sim::HidAnswer::kRefuse, .request = {}, .start = {}, .skip = 0, .times = 0});
    std::array<MagStripeReaderInfo, 3> list{};
    list[0].index = 77;
    int count = 3;
    EXPECT_FAILURE(QLMSR_GetMagStripeDevices(list.data(), &count), QLERR_INTERNAL_ERROR, kScanFailed);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(list[0].index, 77);
    bool state = true;
    EXPECT_FAILURE(QLMSR_IsEnabled(&state), QLERR_INTERNAL_ERROR, "fail check enabled status.");
    EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");

    // The selected index and the callbacks have stayed.
    silent.Unplug();
    a.Unplug();
    ListReaders();
    a.Plug();
    const Serials serials = ListSerials();
    ASSERT_EQ(serials, (Serials{{0, "B"}, {1, "A"}}));
    EXPECT_SUCCESS(QLMSR_Enable());
    const Report report = a.Swipe();
    EXPECT_EQ(log.AwaitCount(1).raw, report);
}

}  // namespace
}  // namespace quarlin::test
