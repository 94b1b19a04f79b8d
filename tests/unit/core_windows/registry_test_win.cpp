// SPDX-License-Identifier: Apache-2.0
#include "core/registry_win.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <type_traits>

#include "support/import_hook_win.h"
#include "support/machine_state_win.h"

namespace quarlin {
namespace {

static_assert(std::has_virtual_destructor_v<CReg>);
// No data members: nothing but the pointer to its virtual functions.
static_assert(sizeof(CReg) == sizeof(void*));

constexpr const wchar_t* kKey = L"Software\\QuarlinUnitTest";
constexpr const wchar_t* kValue = L"Value";

class Registry : public ::testing::Test {
  protected:
    void SetBytes(DWORD type, const std::string& bytes) { value_.Set(type, std::as_bytes(std::span(bytes))); }

    test::RegistryValueGuard value_{HKEY_CURRENT_USER, kKey, kValue};
    CReg registry_;
};

TEST_F(Registry, NumberIsRead) {
    DWORD number = 0;
    value_.SetDword(0x89ABCDEF);
    EXPECT_TRUE(registry_.ReadDword(HKEY_CURRENT_USER, kKey, kValue, &number));
    EXPECT_EQ(number, 0x89ABCDEF);
}

TEST_F(Registry, NumberOfAnotherTypeOrLengthIsLeftAlone) {
    using namespace std::string_literals;
    const auto expectNone = [&] {
        DWORD number = 4711;
        EXPECT_FALSE(registry_.ReadDword(HKEY_CURRENT_USER, kKey, kValue, &number));
        EXPECT_EQ(number, 4711U);
    };
    expectNone();
    value_.SetText(L"1");
    expectNone();
    for (const DWORD type : {DWORD{REG_BINARY}, DWORD{REG_QWORD}, DWORD{REG_DWORD_BIG_ENDIAN}, DWORD{REG_NONE}}) {
        SetBytes(type, "\1\0\0\0"s);
        expectNone();
    }
    for (const size_t length : {0U, 3U, 5U, 8U, 256U, 257U}) {
        SetBytes(REG_DWORD, std::string(length, '\1'));
        expectNone();
    }
    value_.Remove();
    expectNone();
}

TEST_F(Registry, TextIsReadIntoExactlyItsRoom) {
    value_.SetText(L"abc");
    std::array<wchar_t, 6> text;
    text.fill(L'?');
    DWORD bytes = 4 * sizeof(wchar_t);
    EXPECT_TRUE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0));
    EXPECT_EQ(std::wstring(text.data(), 6), std::wstring(L"abc\0??", 6));
    EXPECT_EQ(bytes, 8U);
    // One character less is too little.
    bytes = 3 * sizeof(wchar_t);
    EXPECT_FALSE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0));
}

TEST_F(Registry, TextWithoutTerminatorGetsOneWithinItsRoom) {
    value_.SetTextWithoutTerminator(L"abcd");
    std::array<wchar_t, 6> text;
    text.fill(L'?');
    DWORD bytes = 4 * sizeof(wchar_t);
    EXPECT_TRUE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0));
    EXPECT_EQ(std::wstring(text.data(), 6), std::wstring(L"abc\0??", 6));

    text.fill(L'?');
    bytes = 5 * sizeof(wchar_t);
    EXPECT_TRUE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0));
    EXPECT_EQ(std::wstring(text.data(), 6), std::wstring(L"abcd\0?", 6));
}

TEST_F(Registry, TextOfEachTextTypeIsRead) {
    for (const DWORD type : {DWORD{REG_SZ}, DWORD{REG_EXPAND_SZ}, DWORD{REG_MULTI_SZ}}) {
        value_.SetText(L"%PATH%", type);
        std::array<wchar_t, 16> text{};
        DWORD bytes = sizeof(text);
        EXPECT_TRUE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0));
        EXPECT_STREQ(text.data(), L"%PATH%");
    }
    for (const DWORD type : {DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{REG_LINK}}) {
        value_.SetText(L"a", type);
        std::array<wchar_t, 16> text{};
        DWORD bytes = sizeof(text);
        EXPECT_FALSE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, 0)) << type;
    }
}

REGSAM askedAccess;

LSTATUS WINAPI WatchOpen(HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    askedAccess = access;
    return test::SystemFunction<decltype(RegOpenKeyExW)>("advapi32.dll", "RegOpenKeyExW")(root, subKey, options, access,
                                                                                          result);
}

TEST_F(Registry, ExtraAccessIsAskedForBesideQueries) {
    value_.SetText(L"abc");
    const test::ImportHook hook("ADVAPI32.dll", "RegOpenKeyExW", &WatchOpen, GetModuleHandleW(nullptr));
    std::array<wchar_t, 16> text{};
    DWORD bytes = sizeof(text);
    EXPECT_TRUE(registry_.ReadString(HKEY_CURRENT_USER, kKey, kValue, text.data(), &bytes, KEY_WOW64_64KEY));
    EXPECT_EQ(askedAccess, static_cast<REGSAM>(KEY_QUERY_VALUE | KEY_WOW64_64KEY));
    DWORD number = 0;
    registry_.ReadDword(HKEY_CURRENT_USER, kKey, kValue, &number);
    EXPECT_EQ(askedAccess, static_cast<REGSAM>(KEY_QUERY_VALUE));
}

}  // namespace
}  // namespace quarlin
