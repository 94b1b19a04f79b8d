// SPDX-License-Identifier: Apache-2.0
// The checks of arguments: what each function refuses, in which words, and that nothing is sent then.
#include <quarlin/uhf_rfid.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "rfid/reader_functions.h"
#include "rfid/rfid_session_win.h"

namespace quarlin::test {
namespace {

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();
constexpr unsigned int kAllBits = std::numeric_limits<unsigned int>::max();
// A number whose low bits alone would be all right.
constexpr unsigned int Beyond(unsigned int number, int bit) {
    return number + (1U << bit);
}

using Buffer = std::array<unsigned char, 600>;

Buffer Filled() {
    Buffer buffer;
    buffer.fill('?');
    return buffer;
}

struct Refusals {
    RfidSession session;

    // The call is refused with this code and text, and the reader hears nothing of it.
    void Expect(const std::string& what, QLerr result, QLerr code, const char* text) {
        EXPECT_TRUE(FailedWith(&QLAPI_GetLastError, what.c_str(), result, code, text));
        EXPECT_EQ(session.reader.TakeReports(), Reports{}) << what;
    }
    void ExpectByName(const std::string& what, QLerr result) {
        Expect(what, result, QLERR_INVALID_ARGUMENT, "QLERR_INVALID_ARGUMENT");
    }
    void ExpectByText(const std::string& what, QLerr result) {
        Expect(what, result, QLERR_INVALID_ARGUMENT, "Invalid Argument");
    }
};

struct Inventory {
    const char* name;
    QLerr (*find)(void* handle, char* tagId, int* length, int* signal);
};

class RfidInventoryArguments : public ::testing::TestWithParam<Inventory> {};
INSTANTIATE_TEST_SUITE_P(Of, RfidInventoryArguments,
                         ::testing::Values(Inventory{"GetFirstTag", QLUHFRFID_GetFirstTag},
                                           Inventory{"GetNextTag", QLUHFRFID_GetNextTag}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(RfidInventoryArguments, AreRefusedWhenNullOrForABufferOfImpossibleSize) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    const auto& find = GetParam().find;
    Buffer buffer = Filled();
    char* const tagId = reinterpret_cast<char*>(buffer.data());
    int length = 64;
    int signal = 77;
    refusals.ExpectByText("no identifier", find(handle, nullptr, &length, &signal));
    refusals.ExpectByText("no length", find(handle, tagId, nullptr, &signal));
    refusals.ExpectByText("no signal", find(handle, tagId, &length, nullptr));
    refusals.ExpectByText("nothing", find(handle, nullptr, nullptr, nullptr));
    EXPECT_EQ(length, 64);
    for (const int size : {-1, 256, 257, static_cast<int>(Beyond(64, 16)), kLeast, kLeast + 64, kMost, -192}) {
        length = size;
        refusals.ExpectByText("size " + std::to_string(size), find(handle, tagId, &length, &signal));
        EXPECT_EQ(length, size);
    }
    EXPECT_EQ(buffer, Filled());
    EXPECT_EQ(signal, 77);
}

TEST(RfidSelectArguments, AreRefusedNullAndHugeFirstThenShortThenLong) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    Buffer id = Filled();
    for (const unsigned int length : {256U, 257U, Beyond(14, 8), Beyond(14, 16), Beyond(2, 31), kAllBits}) {
        refusals.ExpectByName("length " + std::to_string(length), QLUHFRFID_SelectTag(handle, id.data(), length));
    }
    for (const unsigned int length : {0U, 2U, 14U, 34U, 256U}) {
        refusals.ExpectByName("null, length " + std::to_string(length), QLUHFRFID_SelectTag(handle, nullptr, length));
    }
    for (const unsigned int length : {0U, 1U, 2U}) {
        refusals.Expect("length " + std::to_string(length), QLUHFRFID_SelectTag(handle, id.data(), length),
                        QLERR_UHFRFID_BUFFERTOOSMALL, "QLERR_UHFRFID_BUFFERTOOSMALL");
    }
    for (const unsigned int length : {34U, 35U, 255U}) {
        refusals.ExpectByName("length " + std::to_string(length), QLUHFRFID_SelectTag(handle, id.data(), length));
    }
}

const std::vector<unsigned int> kNoBytes{256U, 257U, Beyond(3, 8), Beyond(3, 16), Beyond(3, 31), kAllBits};
const std::vector<int> kNoPasswordLengths{0,  5,      255,        256,  257, static_cast<int>(Beyond(4, 16)),
                                          -1, kLeast, kLeast + 2, kMost};

// Everything beside the password is handed over by the caller.
using WithPassword = std::function<QLerr(unsigned char* password, int length)>;

void ExpectPasswordChecks(Refusals& refusals, const WithPassword& call) {
    Buffer password = Filled();
    refusals.ExpectByName("no password", call(nullptr, 4));
    for (const int length : kNoPasswordLengths) {
        refusals.ExpectByName("password of " + std::to_string(length), call(password.data(), length));
    }
}

TEST(RfidReadArguments, AreRefusedWhenNullOrOutOfRange) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    Buffer data = Filled();
    Password password = AccessPassword();
    const auto read = [&](unsigned int bank, unsigned int pointer, void* to, int words) {
        return QLUHFRFID_ReadTag(handle, bank, pointer, password.Data(), password.Length(), to, words);
    };
    refusals.ExpectByName("no data", read(3, 0, nullptr, 4));
    refusals.ExpectByName("no data and no words", read(3, 0, nullptr, 0));
    for (const unsigned int number : kNoBytes) {
        refusals.ExpectByName("bank " + std::to_string(number), read(number, 0, data.data(), 4));
        refusals.ExpectByName("word pointer " + std::to_string(number), read(3, number, data.data(), 4));
    }
    for (const int words : {-1, 256, 260, static_cast<int>(Beyond(4, 16)), kLeast, kLeast + 4, kMost}) {
        refusals.ExpectByName(std::to_string(words) + " words", read(3, 0, data.data(), words));
    }
    ExpectPasswordChecks(refusals, [&](unsigned char* bytes, int length) {
        return QLUHFRFID_ReadTag(handle, 3, 0, bytes, length, data.data(), 4);
    });
    EXPECT_EQ(data, Filled());
}

TEST(RfidWriteArguments, AreRefusedWhenNullOrOutOfRange) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    Buffer data = Filled();
    Password password = AccessPassword();
    const auto write = [&](unsigned int bank, unsigned int pointer, unsigned char* from, int words) {
        return QLUHFRFID_WriteTag(handle, bank, pointer, password.Data(), password.Length(), from, words);
    };
    refusals.ExpectByName("no data", write(3, 0, nullptr, 2));
    for (const unsigned int number : kNoBytes) {
        refusals.ExpectByName("bank " + std::to_string(number), write(number, 0, data.data(), 2));
        refusals.ExpectByName("word pointer " + std::to_string(number), write(3, number, data.data(), 2));
    }
    for (const int words : {0, 28, 255, 256, 258, static_cast<int>(Beyond(2, 16)), -1, kLeast, kLeast + 2, kMost}) {
        refusals.ExpectByName(std::to_string(words) + " words", write(3, 0, data.data(), words));
    }
    ExpectPasswordChecks(refusals, [&](unsigned char* bytes, int length) {
        return QLUHFRFID_WriteTag(handle, 3, 0, bytes, length, data.data(), 2);
    });
}

TEST(RfidLockAndKillArguments, AreRefusedWhenNullOrOutOfRange) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    Password password = AccessPassword();
    for (const unsigned int number : kNoBytes) {
        const std::string text = std::to_string(number);
        refusals.ExpectByName("first parameter " + text,
                              QLUHFRFID_LockTag(handle, number, 2, password.Data(), password.Length()));
        refusals.ExpectByName("second parameter " + text,
                              QLUHFRFID_LockTag(handle, 4, number, password.Data(), password.Length()));
    }
    ExpectPasswordChecks(
        refusals, [&](unsigned char* bytes, int length) { return QLUHFRFID_LockTag(handle, 4, 2, bytes, length); });
    ExpectPasswordChecks(refusals,
                         [&](unsigned char* bytes, int length) { return QLUHFRFID_KillTag(handle, bytes, length); });
}

TEST(RfidPowerArguments, AreRefusedWhenNullOrOutOfRange) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    for (const unsigned int power : kNoBytes) {
        refusals.ExpectByName("power " + std::to_string(power), QLUHFRFID_SetPower(handle, power));
    }
    refusals.ExpectByName("no power", QLUHFRFID_GetPower(handle, nullptr));
}

template <typename Number>
void ExpectRefusedValues(Refusals& refusals, const char* name, QLerr (*set)(void*, Number*),
                         const std::vector<Number>& values) {
    SCOPED_TRACE(name);
    refusals.ExpectByText("null", set(refusals.session.handle, nullptr));
    for (const Number value : values) {
        Number given = value;
        refusals.ExpectByText("value " + std::to_string(value), set(refusals.session.handle, &given));
        EXPECT_EQ(given, value);
    }
}

TEST(RfidQueryArguments, AreRefusedWhenNullOrNotAmongTheValues) {
    Refusals refusals;
    // The codes that carry a frequency are no frequencies; 65576 is 40 in its low 16 bits.
    ExpectRefusedValues(refusals, "SetLinkFreqForQuery", QLUHFRFID_SetLinkFreqForQuery,
                        {0,
                         6,
                         8,
                         9,
                         12,
                         15,
                         39,
                         41,
                         159,
                         161,
                         212,
                         214,
                         250,
                         255,
                         257,
                         319,
                         321,
                         639,
                         641,
                         65576,
                         Beyond(160, 8),
                         Beyond(160, 31),
                         kAllBits});
    const std::vector<unsigned int> aboveThree{4,       5, 16, 255, 256, Beyond(3, 8), Beyond(3, 16), Beyond(3, 31),
                                               kAllBits};
    ExpectRefusedValues(refusals, "SetMillerForQuery", QLUHFRFID_SetMillerForQuery, aboveThree);
    ExpectRefusedValues(refusals, "SetSessionForQuery", QLUHFRFID_SetSessionForQuery, aboveThree);
    ExpectRefusedValues(refusals, "SetQBeginForQuery", QLUHFRFID_SetQBeginForQuery,
                        {16, 17, 255, 256, Beyond(15, 8), Beyond(15, 16), Beyond(15, 31), kAllBits});
    // 170 to 206 are the bytes that carry the values; -326 has the low byte of -70.
    ExpectRefusedValues(refusals, "SetSensitivityForQuery", QLUHFRFID_SetSensitivityForQuery,
                        {-49, -87, 0, 50, 86, -1, -128, 127, 170, 186, 206, -326, 256 - 70, 65536 - 70, kLeast, kMost});
}

TEST(RfidQueryArguments, OfGettersAreRefusedWhenNull) {
    Refusals refusals;
    void* const handle = refusals.session.handle;
    refusals.ExpectByText("link frequency", QLUHFRFID_GetLinkFreqForQuery(handle, nullptr));
    refusals.ExpectByText("Miller", QLUHFRFID_GetMillerForQuery(handle, nullptr));
    refusals.ExpectByText("session", QLUHFRFID_GetSessionForQuery(handle, nullptr));
    refusals.ExpectByText("Q", QLUHFRFID_GetQBeginForQuery(handle, nullptr));
    refusals.ExpectByText("sensitivity", QLUHFRFID_GetSensitivityForQuery(handle, nullptr));
}

}  // namespace
}  // namespace quarlin::test
