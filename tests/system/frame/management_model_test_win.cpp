// SPDX-License-Identifier: Apache-2.0
// QLMISC_GetModelNumber: the model that Windows management tells, its cache, its limits and its buffer.
#include <quarlin/library.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "frame/management_stand_in_win.h"
#include "support/last_error.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr int kUntouched = -4711;

class ManagementModel : public ::testing::Test {
  protected:
    ManagementStandIn management_;
};

// The model as a caller with enough room gets it.
std::string Model() {
    std::array<char, 251> buffer;
    buffer.fill('?');
    int length = kUntouched;
    EXPECT_SUCCESS(QLMISC_GetModelNumber(buffer.data(), 250, &length));
    EXPECT_EQ(buffer[250], '?');
    EXPECT_EQ(static_cast<int>(std::string(buffer.data()).size()), length);
    return buffer.data();
}

TEST_F(ManagementModel, IsToldInUtf8) {
    management_.SetModel(L"JR-56 \x00E9\x20AC\xD83D\xDEF0");
    EXPECT_EQ(Model(), "JR-56 \xC3\xA9\xE2\x82\xAC\xF0\x9F\x9B\xB0");
}

TEST_F(ManagementModel, LengthAloneMayBeAskedFor) {
    management_.SetModel(L"JR-56SIM");
    int length = kUntouched;
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, 0, &length));
    EXPECT_EQ(length, 8);
    length = kUntouched;
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, 1000, &length));
    EXPECT_EQ(length, 8);
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, 0, nullptr));
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, -1, nullptr));
}

TEST_F(ManagementModel, IsAskedForOnce) {
    management_.SetModel(L"JR-56SIM");
    EXPECT_EQ(Model(), "JR-56SIM");
    management_.SetModel(L"JR-57SIM");
    management_.SetFaults(L"create=0x80040154");
    EXPECT_EQ(Model(), "JR-56SIM");
    int length = kUntouched;
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, 0, &length));
    EXPECT_EQ(length, 8);
    EXPECT_EQ(management_.Released(), "object enumerator service locator");
}

struct BufferCase {
    const char* name;
    int size;
    std::string written;
    DWORD failure;
};

void PrintTo(const BufferCase& buffer, std::ostream* stream) {
    *stream << buffer.name;
}
using namespace std::string_literals;
// For a model of 8 characters.
const BufferCase kBufferCases[] = {
    {"Ample", 16, "JR-56SIM\0"s, 0},
    {"LengthAndTerminator", 9, "JR-56SIM\0"s, 0},
    {"ExactlyTheLengthIsCut", 8, "JR-56SI\0"s, 0x8007007A},
    {"BelowTheLengthIsLeftAlone", 7, "", 0},
    {"One", 1, "", 0},
    {"Zero", 0, "", 0},
    {"Negative", -1, "", 0},
    {"Smallest", INT_MIN, "", 0},
    {"Largest", INT_MAX, "JR-56SIM\0"s, 0},
};

class ManagementModelBuffer : public ManagementModel, public ::testing::WithParamInterface<BufferCase> {};

TEST_P(ManagementModelBuffer, IsBounded) {
    management_.SetModel(L"JR-56SIM");
    for (const bool cached : {false, true}) {
        std::array<char, 16> buffer;
        buffer.fill('?');
        int length = kUntouched;
        const auto get = [&] { return QLMISC_GetModelNumber(buffer.data(), GetParam().size, &length); };
        if (GetParam().failure == 0) {
            EXPECT_SUCCESS(get());
        } else {
            EXPECT_FAILURE(get(), QLERR_INTERNAL_ERROR, Win32Message("Failed to copy string", GetParam().failure));
        }
        EXPECT_EQ(length, 8) << cached;
        std::string expected = GetParam().written;
        expected.resize(buffer.size(), '?');
        EXPECT_EQ(std::string(buffer.data(), buffer.size()), expected) << cached;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ManagementModelBuffer, ::testing::ValuesIn(kBufferCases),
                         [](const auto& test) { return std::string(test.param.name); });

struct LengthCase {
    const char* name;
    std::wstring model;
    std::string read;
};

void PrintTo(const LengthCase& length, std::ostream* stream) {
    *stream << length.name;
}
std::wstring Repeated(const wchar_t* text, int count) {
    std::wstring result;
    while (count-- > 0) {
        result += text;
    }
    return result;
}
const LengthCase kLengthCases[] = {
    {"Ascii249", Repeated(L"x", 249), std::string(249, 'x')},
    // A longer one reads as empty.
    {"Ascii250", Repeated(L"x", 250), ""},
    {"Ascii251", Repeated(L"x", 251), ""},
    {"Ascii5000", Repeated(L"x", 5000), ""},
    {"TwoBytes124", Repeated(L"\x00E9", 124), ToUtf8(Repeated(L"\x00E9", 124))},
    {"ThreeBytes83", Repeated(L"\x20AC", 83), ToUtf8(Repeated(L"\x20AC", 83))},
    // Characters are counted first: 250 of them read as empty, whatever their bytes.
    {"TwoBytes250", Repeated(L"\x00E9", 250), ""},
};

class ManagementModelLength : public ManagementModel, public ::testing::WithParamInterface<LengthCase> {};

TEST_P(ManagementModelLength, IsReadAndCached) {
    management_.SetModel(GetParam().model);
    EXPECT_EQ(Model(), GetParam().read);
    management_.SetModel(L"another");
    EXPECT_EQ(Model(), GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(Lengths, ManagementModelLength, ::testing::ValuesIn(kLengthCases),
                         [](const auto& test) { return std::string(test.param.name); });

class ManagementModelBytes : public ManagementModel, public ::testing::WithParamInterface<std::wstring> {};

TEST_P(ManagementModelBytes, BeyondTheBufferFailAndAreNotCached) {
    management_.SetModel(GetParam());
    std::array<char, 250> buffer;
    buffer.fill('?');
    int length = kUntouched;
    EXPECT_FAILURE(QLMISC_GetModelNumber(buffer.data(), 250, &length), QLERR_INTERNAL_ERROR,
                   Win32Message("Unicode to multibyte conversion failed", ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(buffer[0], '?');
    EXPECT_EQ(length, kUntouched);

    // What the failed conversion left must not show in a longer, and so empty, model.
    management_.SetModel(std::wstring(250, L'x'));
    EXPECT_EQ(Model(), "");
}

INSTANTIATE_TEST_SUITE_P(Texts, ManagementModelBytes,
                         ::testing::Values(Repeated(L"\x00E9", 249), Repeated(L"\x00E9", 125),
                                           Repeated(L"x", 248) + L"\x00E9", Repeated(L"\x20AC", 84)));

class ManagementModelWithoutText : public ManagementModel, public ::testing::WithParamInterface<const wchar_t*> {};

TEST_P(ManagementModelWithoutText, IsEmpty) {
    management_.SetFaults(GetParam());
    int length = kUntouched;
    EXPECT_SUCCESS(QLMISC_GetModelNumber(nullptr, 0, &length));
    EXPECT_EQ(length, 0);
    EXPECT_EQ(Model(), "");
}

INSTANTIATE_TEST_SUITE_P(Values, ManagementModelWithoutText,
                         ::testing::Values(L"get=int", L"get=null", L"get=bstrnull"));

// An empty model "fits" into no room at all, and the copy refuses that.
TEST_F(ManagementModel, EmptyOneWithABufferOfNoSizeFails) {
    management_.SetFaults(L"get=int");
    char buffer = '?';
    int length = kUntouched;
    EXPECT_FAILURE(QLMISC_GetModelNumber(&buffer, 0, &length), QLERR_INTERNAL_ERROR,
                   Win32Message("Failed to copy string", 0x80070057));
    EXPECT_EQ(length, 0);
    EXPECT_EQ(buffer, '?');

    EXPECT_SUCCESS(QLMISC_GetModelNumber(&buffer, -1, &length));
    EXPECT_EQ(buffer, '?');
    EXPECT_SUCCESS(QLMISC_GetModelNumber(&buffer, 1, &length));
    EXPECT_EQ(buffer, '\0');
}

}  // namespace
}  // namespace quarlin::test
