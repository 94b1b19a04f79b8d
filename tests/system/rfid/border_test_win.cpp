// SPDX-License-Identifier: Apache-2.0
// Arguments at the borders of what is accepted, as the reader receives them.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <string>
#include <vector>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

std::string HexByte(int byte) {
    return sim::HexText(std::array{static_cast<std::uint8_t>(byte)});
}

// 01 02 03 ...
std::vector<unsigned char> Counting(std::size_t count) {
    std::vector<unsigned char> bytes(count);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    return bytes;
}

// A reader that answers everything with nothing but success: what its tags would say is not wanted here.
struct AgreeableReader {
    AgreeableReader() { session.reader->AddFault(UhfFault::Status(0).Always()); }

    RfidSession session;

    void ExpectSent(const std::string& frame, QLerr result) {
        EXPECT_TRUE(FailedWith(&QLAPI_GetLastError, frame.c_str(), result, QLERR_OK, "QLERR_OK"));
        EXPECT_EQ(session.reader.TakeReports(), Reports{Report(frame)});
    }
};

TEST(RfidPasswords, OfOneToFourBytesGoBackwardsAndAreFilledWithZeros) {
    AgreeableReader reader;
    void* const handle = reader.session.handle;
    struct Row {
        std::vector<unsigned char> given;
        std::string sent;
    };
    for (const auto& [given, sent] : {Row{{0xAA}, "AA000000"}, Row{{0xAA, 0xBB}, "BBAA0000"},
                                      Row{{0xAA, 0xBB, 0xCC}, "CCBBAA00"}, Row{{0xAA, 0xBB, 0xCC, 0xDD}, "DDCCBBAA"},
                                      Row{{0, 0, 0, 0}, "00000000"}, Row{{0xFF, 0xFF, 0xFF, 0xFF}, "FFFFFFFF"}}) {
        Password password(given);
        std::array<unsigned char, 4> data{1, 2, 3, 4};
        reader.ExpectSent("37090302" + sent + "02",
                          QLUHFRFID_ReadTag(handle, 3, 2, password.Data(), password.Length(), data.data(), 2));
        reader.ExpectSent("350D0302" + sent + "0201020304",
                          QLUHFRFID_WriteTag(handle, 3, 2, password.Data(), password.Length(), data.data(), 2));
        reader.ExpectSent("3B080403" + sent, QLUHFRFID_LockTag(handle, 4, 3, password.Data(), password.Length()));
        reader.ExpectSent("3D06" + sent, QLUHFRFID_KillTag(handle, password.Data(), password.Length()));
    }
}

// Bytes of a number as it lies in memory.
TEST(RfidPasswords, ThatAreNumbersAreSentMostSignificantByteFirst) {
    AgreeableReader reader;
    std::uint32_t number = 0x1A2B3C4D;
    reader.ExpectSent("3D061A2B3C4D",
                      QLUHFRFID_KillTag(reader.session.handle, reinterpret_cast<unsigned char*>(&number), 4));
}

TEST(RfidSelect, SendsOneToThirtyOneBytesWithoutTheFirstTwo) {
    AgreeableReader reader;
    for (unsigned int length = 3; length <= 33; ++length) {
        std::vector<unsigned char> id = Counting(length);
        const std::string rest = sim::HexText(std::span(id).subspan(2));
        const int sent = static_cast<int>(length) - 2;
        reader.ExpectSent("33" + HexByte(sent + 3) + HexByte(sent) + rest,
                          QLUHFRFID_SelectTag(reader.session.handle, id.data(), length));
    }
}

TEST(RfidRead, SendsBanksPointersAndCountsUpTo255) {
    AgreeableReader reader;
    Password none({0});
    std::array<unsigned char, 510> data;
    data.fill('?');
    const auto untouched = data;
    const auto read = [&](unsigned int bank, unsigned int pointer, int words) {
        return QLUHFRFID_ReadTag(reader.session.handle, bank, pointer, none.Data(), none.Length(), data.data(), words);
    };
    reader.ExpectSent("370900000000000000", read(0, 0, 0));
    reader.ExpectSent("370904010000000001", read(4, 1, 1));
    reader.ExpectSent("3709FFFF00000000FF", read(255, 255, 255));
    reader.ExpectSent("370980800000000080", read(128, 128, 128));
    // No words came.
    EXPECT_EQ(data, untouched);
}

TEST(RfidWrite, SendsOneToTwentySevenWordsAsTheyAre) {
    AgreeableReader reader;
    Password none({0});
    std::vector<unsigned char> data = Counting(54);
    for (int words = 1; words <= 27; ++words) {
        const std::string sent = sim::HexText(std::span(data).first(2 * static_cast<std::size_t>(words)));
        reader.ExpectSent("35" + HexByte(2 * words + 9) + "FFFE00000000" + HexByte(words) + sent,
                          QLUHFRFID_WriteTag(reader.session.handle, 255, 254, none.Data(), 1, data.data(), words));
    }
}

TEST(RfidLock, SendsBothParametersAsTheyAre) {
    AgreeableReader reader;
    Password none({0});
    for (const unsigned int first : {0U, 1U, 128U, 255U}) {
        for (const unsigned int second : {0U, 2U, 127U, 255U}) {
            reader.ExpectSent(
                "3B08" + HexByte(static_cast<int>(first)) + HexByte(static_cast<int>(second)) + "00000000",
                QLUHFRFID_LockTag(reader.session.handle, first, second, none.Data(), 1));
        }
    }
}

TEST(RfidPower, IsSentFrom0To255) {
    AgreeableReader reader;
    for (unsigned int power = 0; power <= 255; ++power) {
        reader.ExpectSent("C003" + HexByte(static_cast<int>(power)), QLUHFRFID_SetPower(reader.session.handle, power));
    }
}

// The reader says nothing but zeros, and so do the setters then.
TEST(RfidQuery, SendsEveryValueWithItsFlagAlone) {
    AgreeableReader reader;
    void* const handle = reader.session.handle;
    const auto frame = [](int flagAt, int value) {
        Bytes bytes(14);
        bytes[0] = 0x59;
        bytes[1] = 14;
        bytes[static_cast<std::size_t>(flagAt)] = 1;
        bytes[static_cast<std::size_t>(flagAt) + 1] = static_cast<std::uint8_t>(value);
        return sim::HexText(bytes);
    };
    const auto expectSent = [&]<typename Number>(QLerr (*set)(void*, Number*), int flagAt, Number value, int carried,
                                                 Number back) {
        Number given = value;
        reader.ExpectSent(frame(flagAt, carried), set(handle, &given));
        EXPECT_EQ(given, back);
    };
    struct Frequency {
        unsigned int kHz;
        int code;
    };
    for (const auto [kHz, code] : {Frequency{40, 0}, {160, 6}, {213, 8}, {256, 9}, {320, 12}, {640, 15}}) {
        expectSent(QLUHFRFID_SetLinkFreqForQuery, 2, kHz, code, 40U);
    }
    for (unsigned int value = 0; value <= 3; ++value) {
        expectSent(QLUHFRFID_SetMillerForQuery, 4, value, static_cast<int>(value), 0U);
        expectSent(QLUHFRFID_SetSessionForQuery, 6, value, static_cast<int>(value), 0U);
    }
    for (unsigned int value = 0; value <= 15; ++value) {
        expectSent(QLUHFRFID_SetQBeginForQuery, 10, value, static_cast<int>(value), 0U);
    }
    for (int value = -86; value <= -50; ++value) {
        expectSent(QLUHFRFID_SetSensitivityForQuery, 12, value, value + 256, 0);
    }
}

}  // namespace
}  // namespace quarlin::test
