// SPDX-License-Identifier: Apache-2.0
// QLLIB_GetSDKVersion and QLLIB_GetModelNumber: the size protocol, and the firmware's product name in every form that
// the registry can hold.
#include <quarlin/library.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/machine_state_win.h"
#include "support/resource_count_win.h"

namespace quarlin::test {
namespace {

using namespace std::string_literals;

constexpr const char* kNoCount = "The argument count cannot be NULL.";
constexpr const char* kTooSmall = "Buffer size too small";
constexpr const char* kNoName = "error.";

// The firmware's product name, for the length of a test.
class FirmwareName {
  public:
    RegistryValueGuard* operator->() { return &value_; }

  private:
    MachineStateLock lock_;
    RegistryValueGuard value_{HKEY_LOCAL_MACHINE, L"HARDWARE\\Description\\System\\BIOS", L"SystemProductName"};
};

// Both functions have the same arguments and, for the same text, the same answers.
struct TextFunction {
    const char* name;
    QLerr (*get)(wchar_t* buffer, int* size);
};

void PrintTo(const TextFunction& function, std::ostream* stream) {
    *stream << function.name;
}
const TextFunction kTextFunctions[] = {
    {"SdkVersion", [](wchar_t* buffer, int* size) { return QLLIB_GetSDKVersion(buffer, size); }},
    {"ModelNumber", [](wchar_t* buffer, int* size) { return QLLIB_GetModelNumber(buffer, size); }},
};

class TextOut : public ::testing::TestWithParam<TextFunction> {
  protected:
    TextOut() { firmware_->SetText(L"3.0.1000.0"); }

    QLerr Get(wchar_t* buffer, int* size) const { return GetParam().get(buffer, size); }

  private:
    FirmwareName firmware_;
};

TEST_P(TextOut, SizeQueryTellsWhatIsNeeded) {
    int size = 0;
    EXPECT_SUCCESS(Get(nullptr, &size));
    EXPECT_EQ(size, 11);
}

TEST_P(TextOut, NullSizeIsRefused) {
    std::array<wchar_t, 11> buffer{L'?'};
    EXPECT_FAILURE(Get(nullptr, nullptr), QLERR_INVALID_ARGUMENT, kNoCount);
    EXPECT_FAILURE(Get(buffer.data(), nullptr), QLERR_INVALID_ARGUMENT, kNoCount);
    EXPECT_EQ(buffer[0], L'?');
}

TEST_P(TextOut, NullBufferWithASizeIsRefusedWithTheSameWords) {
    for (const int given : {5, 11, 1, -1, INT_MAX, INT_MIN}) {
        int size = given;
        EXPECT_FAILURE(Get(nullptr, &size), QLERR_INVALID_ARGUMENT, kNoCount);
        EXPECT_EQ(size, given);
    }
}

TEST_P(TextOut, SmallBufferIsLeftAloneWithItsSize) {
    for (const int given : {10, 1, 0, -1, INT_MIN}) {
        std::array<wchar_t, 11> buffer;
        buffer.fill(L'?');
        int size = given;
        EXPECT_FAILURE(Get(buffer.data(), &size), QLERR_BUFFER_OVERFLOW, kTooSmall);
        EXPECT_EQ(size, given);
        EXPECT_EQ(std::wstring(buffer.data(), buffer.size()), std::wstring(11, L'?'));
    }
}

TEST_P(TextOut, CopiesAndTellsWhatWasNeeded) {
    for (const int given : {11, 12, 260, INT_MAX}) {
        std::array<wchar_t, 12> buffer;
        buffer.fill(L'?');
        int size = given;
        EXPECT_SUCCESS(Get(buffer.data(), &size));
        EXPECT_EQ(size, 11);
        EXPECT_EQ(std::wstring(buffer.data(), buffer.size()), L"3.0.1000.0\0?"s);
    }
}

TEST_P(TextOut, LeavesNothingBehind) {
    std::array<wchar_t, 32> buffer{};
    const auto round = [&] {
        int size = 32;
        Get(buffer.data(), &size);
        size = 3;
        Get(buffer.data(), &size);
        Get(nullptr, nullptr);
        FetchLastError();
    };
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            round();
        }
        return CountResources();
    };
    const ResourceCount before = rounds(100);
    EXPECT_EQ(rounds(1000), before);
}

INSTANTIATE_TEST_SUITE_P(Functions, TextOut, ::testing::ValuesIn(kTextFunctions),
                         [](const auto& test) { return std::string(test.param.name); });

// What QLLIB_GetModelNumber gives by its two calls.
std::wstring ModelNumber() {
    int size = 0;
    EXPECT_SUCCESS(QLLIB_GetModelNumber(nullptr, &size));
    std::vector<wchar_t> buffer(static_cast<size_t>(size) + 1, L'?');
    EXPECT_SUCCESS(QLLIB_GetModelNumber(buffer.data(), &size));
    EXPECT_EQ(buffer.back(), L'?');
    EXPECT_EQ(static_cast<size_t>(size), buffer.size() - 1);
    return buffer.data();
}

void ExpectNoModelNumber() {
    std::array<wchar_t, 260> buffer{L'?'};
    int size = 260;
    EXPECT_FAILURE(QLLIB_GetModelNumber(buffer.data(), &size), QLERR_INTERNAL_ERROR, kNoName);
    EXPECT_EQ(size, 260);
    EXPECT_EQ(buffer[0], L'?');
    size = 0;
    EXPECT_FAILURE(QLLIB_GetModelNumber(nullptr, &size), QLERR_INTERNAL_ERROR, kNoName);
    EXPECT_EQ(size, 0);
}

struct StoredName {
    const char* name;
    DWORD type;
    std::wstring stored;
    bool terminated;
    std::wstring read;
};

void PrintTo(const StoredName& stored, std::ostream* stream) {
    *stream << stored.name;
}
const std::wstring kLongest(259, L'x');
const StoredName kStoredNames[] = {
    {"Text", REG_SZ, L"JR-56", true, L"JR-56"},
    {"Empty", REG_SZ, L"", true, L""},
    {"NoBytesAtAll", REG_SZ, L"", false, L""},
    {"WithoutTerminator", REG_SZ, L"JR-56", false, L"JR-56"},
    {"OutsideAscii", REG_SZ, L"J\x00E9\x20AC\xD83D\xDEF0", true, L"J\x00E9\x20AC\xD83D\xDEF0"},
    {"ExpandableIsNotExpanded", REG_EXPAND_SZ, L"%SystemRoot% 56", true, L"%SystemRoot% 56"},
    {"ExpandableWithoutTerminator", REG_EXPAND_SZ, L"%SystemRoot%", false, L"%SystemRoot%"},
    {"FirstOfSeveral", REG_MULTI_SZ, L"JR-56\0JR-57\0"s, true, L"JR-56"},
    {"SeveralWithoutTerminator", REG_MULTI_SZ, L"JR-56\0JR-57"s, false, L"JR-56"},
    {"TerminatorInside", REG_SZ, L"JR\0-56"s, true, L"JR"},
    {"LongestThatFits", REG_SZ, kLongest, true, kLongest},
    {"LongestWithoutTerminator", REG_SZ, kLongest, false, kLongest},
    // 520 bytes without a terminator fill the buffer: the last character makes room for one.
    {"BufferFullWithoutTerminator", REG_SZ, kLongest + L"y", false, kLongest},
};

class FirmwareNameForm : public ::testing::TestWithParam<StoredName> {};

TEST_P(FirmwareNameForm, IsRead) {
    FirmwareName firmware;
    if (GetParam().terminated) {
        firmware->SetText(GetParam().stored, GetParam().type);
    } else {
        firmware->SetTextWithoutTerminator(GetParam().stored, GetParam().type);
    }
    EXPECT_EQ(ModelNumber(), GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(Forms, FirmwareNameForm, ::testing::ValuesIn(kStoredNames),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(FirmwareNameForm, OddNumberOfBytesIsRead) {
    FirmwareName firmware;
    const std::wstring text = L"JR-56";
    firmware->Set(REG_SZ, std::as_bytes(std::span(text)).first(5));
    EXPECT_EQ(ModelNumber(), L"JR");
}

TEST(FirmwareNameMissing, IsAnError) {
    FirmwareName firmware;
    firmware->Remove();
    ExpectNoModelNumber();
}

TEST(FirmwareNameMissing, LongerThanTheBufferIsAnError) {
    FirmwareName firmware;
    firmware->SetText(kLongest + L"y");
    ExpectNoModelNumber();
    firmware->SetText(std::wstring(5000, L'x'));
    ExpectNoModelNumber();
}

class FirmwareNameOfType : public ::testing::TestWithParam<DWORD> {};

TEST_P(FirmwareNameOfType, IsAnError) {
    FirmwareName firmware;
    firmware->SetText(L"JR", GetParam());
    ExpectNoModelNumber();
}

INSTANTIATE_TEST_SUITE_P(NoText, FirmwareNameOfType,
                         ::testing::Values(REG_NONE, REG_BINARY, REG_DWORD, REG_QWORD, REG_LINK),
                         [](const auto& test) { return std::to_string(test.param); });

// The arguments come first, then the name, and the size last.
TEST(FirmwareNameMissing, IsFoundOutBeforeTheSizeIsChecked) {
    FirmwareName firmware;
    firmware->Remove();
    std::array<wchar_t, 2> buffer{};
    int size = 1;
    EXPECT_FAILURE(QLLIB_GetModelNumber(buffer.data(), &size), QLERR_INTERNAL_ERROR, kNoName);
    EXPECT_FAILURE(QLLIB_GetModelNumber(buffer.data(), nullptr), QLERR_INVALID_ARGUMENT, kNoCount);
    size = 5;
    EXPECT_FAILURE(QLLIB_GetModelNumber(nullptr, &size), QLERR_INVALID_ARGUMENT, kNoCount);
    EXPECT_EQ(size, 5);
}

TEST(FirmwareNameChanged, IsReadAnew) {
    FirmwareName firmware;
    firmware->SetText(L"JR-56");
    EXPECT_EQ(ModelNumber(), L"JR-56");
    firmware->SetText(L"another machine");
    EXPECT_EQ(ModelNumber(), L"another machine");
}

struct KeyUse {
    HKEY root;
    std::wstring subKey;
    REGSAM access;
    int opened;
    int closed;
};
KeyUse keyUse;

LSTATUS WINAPI WatchOpen(HKEY root, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result) {
    keyUse.root = root;
    keyUse.subKey = subKey;
    keyUse.access = access;
    ++keyUse.opened;
    return RegOpenKeyExW(root, subKey, options, access, result);
}

LSTATUS WINAPI WatchClose(HKEY key) {
    ++keyUse.closed;
    return RegCloseKey(key);
}

TEST(FirmwareNameKey, IsOpenedForQueriesAloneAndClosed) {
    FirmwareName firmware;
    firmware->SetText(L"JR-56");
    const ImportHook open("ADVAPI32.dll", "RegOpenKeyExW", &WatchOpen);
    const ImportHook close("ADVAPI32.dll", "RegCloseKey", &WatchClose);
    int size = 0;
    EXPECT_SUCCESS(QLLIB_GetModelNumber(nullptr, &size));
    EXPECT_EQ(keyUse.root, HKEY_LOCAL_MACHINE);
    EXPECT_STRCASEEQ(std::string(keyUse.subKey.begin(), keyUse.subKey.end()).c_str(),
                     "HARDWARE\\Description\\System\\BIOS");
    EXPECT_EQ(keyUse.access, static_cast<REGSAM>(KEY_QUERY_VALUE));
    EXPECT_EQ(keyUse.opened, 1);
    EXPECT_EQ(keyUse.closed, 1);

    firmware->Remove();
    EXPECT_FAILURE(QLLIB_GetModelNumber(nullptr, &size), QLERR_INVALID_ARGUMENT, kNoCount);
    size = 0;
    EXPECT_FAILURE(QLLIB_GetModelNumber(nullptr, &size), QLERR_INTERNAL_ERROR, kNoName);
    EXPECT_EQ(keyUse.opened, keyUse.closed);
}

}  // namespace
}  // namespace quarlin::test
