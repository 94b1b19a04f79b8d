// SPDX-License-Identifier: Apache-2.0
// The reader's power and its parameters of the Query command.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <cstdint>

#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

template <typename Number>
void ExpectGives(QLerr (*get)(void*, Number*), void* handle, Number expected) {
    Number value = 1234;
    EXPECT_DONE(get(handle, &value));
    EXPECT_EQ(value, expected);
}

// What is set is reported back.
template <typename Number>
void ExpectSets(QLerr (*set)(void*, Number*), QLerr (*get)(void*, Number*), void* handle, Number value) {
    Number given = value;
    EXPECT_DONE(set(handle, &given));
    EXPECT_EQ(given, value);
    ExpectGives(get, handle, value);
}

sim::UhfQuery Query(RfidSession& session) {
    return session.reader->With([](const sim::UhfEngine& engine) { return engine.Query(); });
}

void SetQuery(RfidSession& session, const sim::UhfQuery& query) {
    session.reader->With([&](sim::UhfEngine& engine) { engine.SetQuery(query); });
}

TEST(RfidPower, IsWhatWasSet) {
    RfidSession session;
    ExpectGives(QLUHFRFID_GetPower, session.handle, 27U);
    for (const unsigned int power : {0U, 1U, 127U, 128U, 255U}) {
        EXPECT_DONE(QLUHFRFID_SetPower(session.handle, power));
        EXPECT_EQ(session.reader->With([](const sim::UhfEngine& engine) { return engine.Power(); }), power);
        ExpectGives(QLUHFRFID_GetPower, session.handle, power);
    }
}

TEST(RfidQuery, HoldsWhatWasSetInEachParameterAlone) {
    RfidSession session;
    void* const handle = session.handle;
    sim::UhfQuery expected = Query(session);
    ExpectSets(QLUHFRFID_SetMillerForQuery, QLUHFRFID_GetMillerForQuery, handle, 3U);
    expected.miller = 3;
    EXPECT_EQ(Query(session), expected);
    ExpectSets(QLUHFRFID_SetSessionForQuery, QLUHFRFID_GetSessionForQuery, handle, 2U);
    expected.session = 2;
    EXPECT_EQ(Query(session), expected);
    ExpectSets(QLUHFRFID_SetQBeginForQuery, QLUHFRFID_GetQBeginForQuery, handle, 15U);
    expected.qBegin = 15;
    EXPECT_EQ(Query(session), expected);
    ExpectSets(QLUHFRFID_SetSensitivityForQuery, QLUHFRFID_GetSensitivityForQuery, handle, -86);
    expected.sensitivity = -86;
    EXPECT_EQ(Query(session), expected);
    ExpectSets(QLUHFRFID_SetSensitivityForQuery, QLUHFRFID_GetSensitivityForQuery, handle, -50);
    expected.sensitivity = -50;
    for (const auto& [kHz, code] : {std::pair(40U, 0), {160U, 6}, {213U, 8}, {256U, 9}, {320U, 12}, {640U, 15}}) {
        ExpectSets(QLUHFRFID_SetLinkFreqForQuery, QLUHFRFID_GetLinkFreqForQuery, handle, kHz);
        expected.linkFrequency = static_cast<std::uint8_t>(code);
        EXPECT_EQ(Query(session), expected);
    }
}

unsigned int FrequencyOfCode(int code) {
    switch (code) {
        case 0:
            return 40;
        case 8:
            return 213;
        case 9:
            return 256;
        case 12:
            return 320;
        case 15:
            return 640;
        default:
            return 160;
    }
}

TEST(RfidQuery, GivesWhateverTheReaderSays) {
    RfidSession session;
    void* const handle = session.handle;
    for (int byte = 0; byte <= 0xFF; ++byte) {
        SCOPED_TRACE(byte);
        const auto value = static_cast<std::uint8_t>(byte);
        const auto number = static_cast<unsigned int>(byte);
        SetQuery(session, {value, value, value, value, static_cast<std::int8_t>(value)});
        ExpectGives(QLUHFRFID_GetLinkFreqForQuery, handle, FrequencyOfCode(byte));
        ExpectGives(QLUHFRFID_GetMillerForQuery, handle, number);
        ExpectGives(QLUHFRFID_GetSessionForQuery, handle, number);
        ExpectGives(QLUHFRFID_GetQBeginForQuery, handle, number);
        ExpectGives(QLUHFRFID_GetSensitivityForQuery, handle, byte < 0x80 ? byte : byte - 0x100);
    }
}

// Each value is at a place of its own, and the others are not looked at.
TEST(RfidQuery, TakesEachParameterFromItsOwnPlace) {
    RfidSession session;
    void* const handle = session.handle;
    for (std::size_t offset = 3; offset < 15; ++offset) {
        session.reader->AddFault(UhfFault::Byte(offset, static_cast<std::uint8_t>(0x80 + offset)).Always());
    }
    session.reader->AddFault(UhfFault::Byte(4, 12).Always());
    ExpectGives(QLUHFRFID_GetLinkFreqForQuery, handle, 320U);
    ExpectGives(QLUHFRFID_GetMillerForQuery, handle, 0x86U);
    ExpectGives(QLUHFRFID_GetSessionForQuery, handle, 0x88U);
    ExpectGives(QLUHFRFID_GetQBeginForQuery, handle, 0x8CU);
    ExpectGives(QLUHFRFID_GetSensitivityForQuery, handle, 0x8E - 0x100);
}

template <typename Number>
void ExpectOverwritten(QLerr (*set)(void*, Number*), void* handle, Number value, Number back) {
    EXPECT_DONE(set(handle, &value));
    EXPECT_EQ(value, back);
}

TEST(RfidQuery, SettersGiveBackWhatTheReaderMadeOfTheValue) {
    RfidSession session;
    void* const handle = session.handle;
    const auto reply = [&](std::size_t offset, std::uint8_t value) {
        session.reader->AddFault(UhfFault::Byte(offset, value));
    };
    reply(4, 8);
    ExpectOverwritten(QLUHFRFID_SetLinkFreqForQuery, handle, 640U, 213U);
    reply(4, 7);
    ExpectOverwritten(QLUHFRFID_SetLinkFreqForQuery, handle, 640U, 160U);
    reply(6, 200);
    ExpectOverwritten(QLUHFRFID_SetMillerForQuery, handle, 1U, 200U);
    reply(8, 4);
    ExpectOverwritten(QLUHFRFID_SetSessionForQuery, handle, 1U, 4U);
    reply(12, 255);
    ExpectOverwritten(QLUHFRFID_SetQBeginForQuery, handle, 1U, 255U);
    reply(14, 0x80);
    ExpectOverwritten(QLUHFRFID_SetSensitivityForQuery, handle, -70, -128);
    reply(14, 5);
    ExpectOverwritten(QLUHFRFID_SetSensitivityForQuery, handle, -70, 5);
}

}  // namespace
}  // namespace quarlin::test
