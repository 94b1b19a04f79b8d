// SPDX-License-Identifier: Apache-2.0
// Rounds of the inventory.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoTags = "QLERR_UHFRFID_NO_TAGS";

// What a call has made of its variables.
struct Found {
    QLerr result;
    std::string id;  // without what is untouched at the end
    int length;
    int signal;

    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& found) {
    return out << "result " << found.result << ", \"" << found.id << "\", length " << found.length << ", signal "
               << found.signal;
}

constexpr int kSignalBefore = 77;

Found Find(QLerr (*find)(void*, char*, int*, int*), void* handle, int room) {
    std::array<char, 300> tagId;
    tagId.fill('?');
    int length = room;
    int signal = kSignalBefore;
    const QLerr result = find(handle, tagId.data(), &length, &signal);
    std::string id(tagId.data(), tagId.size());
    id.erase(id.find_last_not_of('?') + 1);
    return {result, sim::HexText(Bytes(id.begin(), id.end())), length, signal};
}

Found First(void* handle, int room = 64) {
    return Find(QLUHFRFID_GetFirstTag, handle, room);
}

Found Next(void* handle, int room = 64) {
    return Find(QLUHFRFID_GetNextTag, handle, room);
}

Found Nothing(QLerr result, int room = 64) {
    return {result, "", room, kSignalBefore};
}

Found FoundTag(const std::string& id, int signal) {
    return {QLERR_OK, id, static_cast<int>(id.size() / 2), signal};
}

const Found kLabel = FoundTag(kLabelId, -48);
const Found kCrate = FoundTag("3000" + kCrateEpc, -66);

void ExpectRecord(QLerr code, const char* text) {
    EXPECT_EQ(FetchLastError(), (Failure{code, text}));
}

TEST(RfidInventory, GivesTheTagsOfARoundUntilThereAreNone) {
    RfidSession session;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(First(session.handle), kLabel);
        ExpectRecord(QLERR_OK, "QLERR_OK");
        EXPECT_EQ(Next(session.handle), kCrate);
        ExpectRecord(QLERR_OK, "QLERR_OK");
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(Next(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
            ExpectRecord(QLERR_UHFRFID_NO_TAGS, kNoTags);
        }
    }
}

TEST(RfidInventory, BeginsAgainInTheMiddleOfARound) {
    RfidSession session;
    EXPECT_EQ(First(session.handle), kLabel);
    EXPECT_EQ(First(session.handle), kLabel);
    EXPECT_EQ(Next(session.handle), kCrate);
}

TEST(RfidInventory, WithoutARoundOrWithoutTagsFindsNone) {
    RfidSession session;
    EXPECT_EQ(Next(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
    ExpectRecord(QLERR_UHFRFID_NO_TAGS, kNoTags);
    session.reader->With([](sim::UhfEngine& engine) {
        engine.Remove(Label().epc);
        engine.Remove(Crate().epc);
    });
    EXPECT_EQ(First(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
    ExpectRecord(QLERR_UHFRFID_NO_TAGS, kNoTags);
}

TEST(RfidInventory, FindsATagThatComesInTheNextRoundOnly) {
    RfidSession session;
    EXPECT_EQ(First(session.handle), kLabel);
    session.reader->With([](sim::UhfEngine& engine) {
        engine.Remove(Crate().epc);
        TagSettings late;
        late.epc = Hex("AABB");
        late.signal = 12;
        engine.Add(late);
    });
    EXPECT_EQ(Next(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
    EXPECT_EQ(First(session.handle), kLabel);
    EXPECT_EQ(Next(session.handle), FoundTag("0800AABB", 12));
}

TEST(RfidInventory, WritesNothingToABufferThatIsTooSmallAndGoesOn) {
    RfidSession session;
    for (const int room : {0, 1, 13}) {
        EXPECT_EQ(First(session.handle, room), Nothing(QLERR_UHFRFID_BUFFERTOOSMALL, room));
        ExpectRecord(QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL");
    }
    EXPECT_EQ(Next(session.handle, 13), Nothing(QLERR_UHFRFID_BUFFERTOOSMALL, 13));
    EXPECT_EQ(First(session.handle, 14), kLabel);
    EXPECT_EQ(Next(session.handle, 255), kCrate);
}

// No identifier fits into no buffer.
TEST(RfidInventory, LeavesIdentifierAndLengthWhenATagHasNone) {
    RfidSession session;
    for (const int room : {0, 64, 255}) {
        session.reader->AddFault(UhfFault::IdentifierLength(0));
        EXPECT_EQ(First(session.handle, room), (Found{QLERR_OK, "", room, -48}));
        ExpectRecord(QLERR_OK, "QLERR_OK");
    }
}

TEST(RfidInventory, GivesTheLongestIdentifierThatAReplyCarries) {
    TagSettings tag;
    tag.epc.assign(52, 0x5C);
    RfidSession session(WithTags({tag}));
    EXPECT_EQ(First(session.handle), FoundTag("D000" + sim::HexText(tag.epc), -60));
}

TEST(RfidInventory, GivesTheSignalAsASignedNumber) {
    RfidSession session;
    for (const int signal : {-128, -1, 0, 1, 127}) {
        session.reader->With(
            [&](sim::UhfEngine& engine) { engine.SetSignal(Label().epc, static_cast<std::int8_t>(signal)); });
        EXPECT_EQ(First(session.handle), FoundTag(kLabelId, signal));
    }
}

// Any number but 0 says that there is a tag.
TEST(RfidInventory, TakesEveryMarkButZeroForATag) {
    RfidSession session;
    for (const std::uint8_t mark : Bytes{1, 2, 127, 128, 255}) {
        session.reader->AddFault(UhfFault::Byte(3, mark));
        EXPECT_EQ(First(session.handle), kLabel);
    }
    session.reader->AddFault(UhfFault::Byte(3, 0));
    EXPECT_EQ(First(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
    ExpectRecord(QLERR_UHFRFID_NO_TAGS, kNoTags);
}

TEST(RfidInventory, OfTwoHundredTagsGivesEachOnce) {
    constexpr int kTags = 200;
    std::vector<TagSettings> tags(kTags);
    for (int i = 0; i < kTags; ++i) {
        tags[static_cast<std::size_t>(i)].epc = {static_cast<std::uint8_t>(i), 0xE2};
    }
    RfidSession session(WithTags(tags));
    for (int i = 0; i < kTags; ++i) {
        const std::string id = "0800" + sim::HexText(tags[static_cast<std::size_t>(i)].epc);
        ASSERT_EQ(i == 0 ? First(session.handle) : Next(session.handle), FoundTag(id, -60));
    }
    EXPECT_EQ(Next(session.handle), Nothing(QLERR_UHFRFID_NO_TAGS));
}

}  // namespace
}  // namespace quarlin::test
