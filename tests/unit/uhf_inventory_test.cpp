// SPDX-License-Identifier: Apache-2.0
#include "scripted_reader.h"

#include <gtest/gtest.h>
#include <array>
#include <climits>
#include <numeric>

namespace quarlin::test {
namespace {

using uhfrfid::TagReader;

// A caller's variables, and whether they were written.
struct Caller {
    std::array<char, 260> tagId;
    int length = 255;
    int signal = 777;

    Caller() { tagId.fill('#'); }

    Outcome Find(ScriptedReader& reader, TagReader::Inventory which = TagReader::Inventory::kFirst) {
        return reader.Do([&](TagReader& r) { r.FindTag(which, tagId.data(), &length, &signal); });
    }
    bool IsUntouched(int lengthBefore = 255) const {
        return length == lengthBefore && signal == 777 &&
               std::ranges::all_of(tagId, [](char letter) { return letter == '#'; });
    }
};

// A reply that reports a tag with an identifier 1, 2, 3, ...
Bytes TagAnswer(std::uint8_t idLength, std::uint8_t signal, std::size_t size = 64) {
    Bytes answer = Answer({0x44, 64, 0, 1, signal, 0xF1, 0xF2, 0xF3, idLength}, std::max<std::size_t>(size, 9));
    std::iota(answer.begin() + 9, answer.end(), std::uint8_t{1});
    answer.resize(size);
    return answer;
}

const Outcome kInvalid{QLERR_INVALID_ARGUMENT, "Invalid Argument"};
const Outcome kUnclassified{QLERR_UHFRFID_UNCLASSIFIED, "QLERR_UHFRFID_UNCLASSIFIED"};
const Outcome kTooSmall{QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL"};

TEST(UhfInventory, BeginsARoundWithOneAndGoesOnWithTwo) {
    ScriptedReader first(TagAnswer(14, 0));
    EXPECT_EQ(Caller().Find(first, TagReader::Inventory::kFirst), kDone);
    EXPECT_EQ(first.Frame(), (Bytes{0x43, 3, 1}));
    ScriptedReader next(TagAnswer(14, 0));
    EXPECT_EQ(Caller().Find(next, TagReader::Inventory::kNext), kDone);
    EXPECT_EQ(next.Frame(), (Bytes{0x43, 3, 2}));
}

TEST(UhfInventory, GivesIdentifierLengthAndSignal) {
    ScriptedReader reader(TagAnswer(14, 0xC4));
    Caller caller;
    ASSERT_EQ(caller.Find(reader), kDone);
    EXPECT_EQ(std::string(caller.tagId.data(), 15), "\1\2\3\4\5\6\7\10\11\12\13\14\15\16#");
    EXPECT_EQ(caller.length, 14);
    EXPECT_EQ(caller.signal, -60);
}

TEST(UhfInventory, TakesTheSignalAsASignedByte) {
    for (int byte = 0; byte < 256; ++byte) {
        ScriptedReader reader(TagAnswer(2, static_cast<std::uint8_t>(byte)));
        Caller caller;
        ASSERT_EQ(caller.Find(reader), kDone);
        EXPECT_EQ(caller.signal, byte < 128 ? byte : byte - 256);
    }
}

TEST(UhfInventory, WithoutATagWritesNothing) {
    ScriptedReader reader(Answer({0x44, 64, 0, 0, 0x11, 0, 0, 0, 14}));
    Caller caller;
    EXPECT_EQ(caller.Find(reader), (Outcome{QLERR_UHFRFID_NO_TAGS, "QLERR_UHFRFID_NO_TAGS"}));
    EXPECT_TRUE(caller.IsUntouched());
}

TEST(UhfInventory, OfATagWithoutIdentifierGivesTheSignalAlone) {
    for (const std::size_t size : {9U, 64U}) {
        for (const int capacity : {0, 64}) {
            ScriptedReader reader(TagAnswer(0, 5, size));
            Caller caller;
            caller.length = capacity;
            EXPECT_EQ(caller.Find(reader), kDone);
            EXPECT_EQ(caller.signal, 5);
            caller.signal = 777;
            EXPECT_TRUE(caller.IsUntouched(capacity));
        }
    }
}

TEST(UhfInventory, TakesAnIdentifierThatFillsTheBufferAndNoLongerOne) {
    for (int capacity = 0; capacity < 20; ++capacity) {
        ScriptedReader reader(TagAnswer(12, 5));
        Caller caller;
        caller.length = capacity;
        if (capacity >= 12) {
            EXPECT_EQ(caller.Find(reader), kDone) << capacity;
            EXPECT_EQ(caller.length, 12);
        } else {
            EXPECT_EQ(caller.Find(reader), kTooSmall) << capacity;
            EXPECT_TRUE(caller.IsUntouched(capacity)) << capacity;
        }
    }
}

TEST(UhfInventory, RefusesAnIdentifierThatGoesBeyondWhatWasReceived) {
    for (int idLength = 0; idLength < 256; ++idLength) {
        ScriptedReader reader(TagAnswer(static_cast<std::uint8_t>(idLength), 5));
        Caller caller;
        if (idLength <= 64 - 9) {
            EXPECT_EQ(caller.Find(reader), kDone) << idLength;
        } else {
            EXPECT_EQ(caller.Find(reader), kUnclassified) << idLength;
            EXPECT_TRUE(caller.IsUntouched()) << idLength;
        }
    }
}

TEST(UhfInventory, RefusesABadReplyBeforeItLooksAtTheBuffer) {
    ScriptedReader reader(TagAnswer(200, 5));
    Caller caller;
    caller.length = 8;
    EXPECT_EQ(caller.Find(reader), kUnclassified);
}

TEST(UhfInventory, RefusesAReplyThatEndsTooEarlyWhereverItEnds) {
    for (std::size_t size = 3; size < 9 + 12; ++size) {
        ScriptedReader reader(TagAnswer(12, 5, size));
        Caller caller;
        EXPECT_EQ(caller.Find(reader), kUnclassified) << size;
        EXPECT_TRUE(caller.IsUntouched()) << size;
    }
    ScriptedReader reader(TagAnswer(12, 5, 9 + 12));
    EXPECT_EQ(Caller().Find(reader), kDone);
}

TEST(UhfInventory, TakesTheLongestIdentifierOfALargerReport) {
    ScriptedReader reader(TagAnswer(255, 5, 9 + 255));
    Caller caller;
    EXPECT_EQ(caller.Find(reader), kDone);
    EXPECT_EQ(caller.length, 255);
    EXPECT_EQ(caller.tagId[254], '\xFF');
    EXPECT_EQ(caller.tagId[255], '#');
}

TEST(UhfInventory, WantsAllPointers) {
    ScriptedReader reader(TagAnswer(2, 5));
    char tagId[16];
    int length = sizeof tagId;
    int signal = 0;
    const auto find = [&](char* id, int* size, int* strength) {
        return reader.Do([&](TagReader& r) { r.FindTag(TagReader::Inventory::kFirst, id, size, strength); });
    };
    EXPECT_EQ(find(nullptr, &length, &signal), kInvalid);
    EXPECT_EQ(find(tagId, nullptr, &signal), kInvalid);
    EXPECT_EQ(find(tagId, &length, nullptr), kInvalid);
    EXPECT_EQ(find(nullptr, nullptr, nullptr), kInvalid);
    EXPECT_TRUE(reader.sent.empty());
    EXPECT_EQ(find(tagId, &length, &signal), kDone);
}

TEST(UhfInventory, WantsACapacityOfZeroTo255) {
    for (const int capacity : {-1, -255, INT_MIN, 256, 257, 512 + 64, INT_MAX, INT_MIN + 64}) {
        ScriptedReader reader(TagAnswer(2, 5));
        Caller caller;
        caller.length = capacity;
        EXPECT_EQ(caller.Find(reader), kInvalid) << capacity;
        EXPECT_TRUE(caller.IsUntouched(capacity)) << capacity;
        EXPECT_TRUE(reader.sent.empty()) << capacity;
    }
    for (const int capacity : {2, 255}) {
        ScriptedReader reader(TagAnswer(2, 5));
        Caller caller;
        caller.length = capacity;
        EXPECT_EQ(caller.Find(reader), kDone) << capacity;
    }
}

}  // namespace
}  // namespace quarlin::test
