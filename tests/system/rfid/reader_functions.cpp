// SPDX-License-Identifier: Apache-2.0
#include "rfid/reader_functions.h"

#include <quarlin/uhf_rfid.h>

#include <array>

#include "hid/hex.h"

namespace quarlin::test {
namespace {

constexpr int kUntouched = 77;

template <auto find>
QLerr Find(void* handle) {
    std::array<char, 64> filled;
    filled.fill('?');
    auto tagId = filled;
    int length = static_cast<int>(tagId.size());
    int signal = kUntouched;
    const QLerr result = find(handle, tagId.data(), &length, &signal);
    if (result != QLERR_OK) {
        EXPECT_EQ(tagId, filled);
        EXPECT_EQ(length, static_cast<int>(tagId.size()));
        EXPECT_EQ(signal, kUntouched);
    }
    return result;
}

QLerr Select(void* handle) {
    std::vector<unsigned char> tagId = sim::ParseHex("30003034257BF7194E4000001A85").value();
    return QLUHFRFID_SelectTag(handle, tagId.data(), static_cast<unsigned int>(tagId.size()));
}

QLerr Read(void* handle) {
    std::array<unsigned char, 8> filled;
    filled.fill('?');
    auto data = filled;
    Password password = AccessPassword();
    const QLerr result = QLUHFRFID_ReadTag(handle, 3, 1, password.Data(), password.Length(), data.data(), 4);
    if (result != QLERR_OK) {
        EXPECT_EQ(data, filled);
    }
    return result;
}

QLerr Write(void* handle) {
    std::array<unsigned char, 6> data{0xCA, 0xFE, 0xBA, 0xBE, 0x00, 0x01};
    Password password = AccessPassword();
    return QLUHFRFID_WriteTag(handle, 3, 2, password.Data(), password.Length(), data.data(), 3);
}

QLerr Lock(void* handle) {
    Password password = AccessPassword();
    return QLUHFRFID_LockTag(handle, 4, 2, password.Data(), password.Length());
}

QLerr Kill(void* handle) {
    Password password = KillPassword();
    return QLUHFRFID_KillTag(handle, password.Data(), password.Length());
}

QLerr SetPower(void* handle) {
    return QLUHFRFID_SetPower(handle, 23);
}

// Getters, and setters of a value.
template <auto function, typename Number, Number before = kUntouched>
QLerr Value(void* handle) {
    Number value = before;
    const QLerr result = function(handle, &value);
    if (result != QLERR_OK) {
        EXPECT_EQ(value, before);
    }
    return result;
}

}  // namespace

const std::vector<ReaderFunction>& ReaderFunctions() {
    using Unsigned = unsigned int;
    using enum sim::UhfCode;
    static const std::string kNothingSet = "590E000000000000000000000000";
    static const std::vector<ReaderFunction> kFunctions{
        {"GetFirstTag", Find<QLUHFRFID_GetFirstTag>, kInventory, "430301", 23, false},
        {"GetNextTag", Find<QLUHFRFID_GetNextTag>, kInventory, "430302", 23, false},
        {"SelectTag", Select, kSelect, "330F0C3034257BF7194E4000001A85", 3, true},
        {"ReadTag", Read, kRead, "37090301BBAA000004", 12, true},
        {"WriteTag", Write, kWrite, "350F0302BBAA000003CAFEBABE0001", 3, true},
        {"LockTag", Lock, kLock, "3B080402BBAA0000", 3, true},
        {"KillTag", Kill, kKill, "3D061A2B3C4D", 3, true},
        {"SetPower", SetPower, kSetPower, "C00317", 3, true},
        {"GetPower", Value<QLUHFRFID_GetPower, Unsigned>, kGetPower, "C202", 4, true},
        {"SetLinkFreqForQuery", Value<QLUHFRFID_SetLinkFreqForQuery, Unsigned, 320>, kQuery,
         "590E010C00000000000000000000", 5, false},
        {"SetMillerForQuery", Value<QLUHFRFID_SetMillerForQuery, Unsigned, 3>, kQuery, "590E000001030000000000000000",
         7, false},
        {"SetSessionForQuery", Value<QLUHFRFID_SetSessionForQuery, Unsigned, 2>, kQuery, "590E000000000102000000000000",
         9, false},
        {"SetQBeginForQuery", Value<QLUHFRFID_SetQBeginForQuery, Unsigned, 9>, kQuery, "590E000000000000000001090000",
         13, false},
        {"SetSensitivityForQuery", Value<QLUHFRFID_SetSensitivityForQuery, int, -86>, kQuery,
         "590E0000000000000000000001AA", 15, false},
        {"GetLinkFreqForQuery", Value<QLUHFRFID_GetLinkFreqForQuery, Unsigned>, kQuery, kNothingSet, 5, false},
        {"GetMillerForQuery", Value<QLUHFRFID_GetMillerForQuery, Unsigned>, kQuery, kNothingSet, 7, false},
        {"GetSessionForQuery", Value<QLUHFRFID_GetSessionForQuery, Unsigned>, kQuery, kNothingSet, 9, false},
        {"GetQBeginForQuery", Value<QLUHFRFID_GetQBeginForQuery, Unsigned>, kQuery, kNothingSet, 13, false},
        {"GetSensitivityForQuery", Value<QLUHFRFID_GetSensitivityForQuery, int>, kQuery, kNothingSet, 15, false},
    };
    return kFunctions;
}

std::vector<ReaderFunction> OneFunctionPerCommand() {
    std::vector<ReaderFunction> functions;
    for (const ReaderFunction& function : ReaderFunctions()) {
        if (functions.empty() || functions.back().command != function.command) {
            functions.push_back(function);
        }
    }
    return functions;
}

}  // namespace quarlin::test
