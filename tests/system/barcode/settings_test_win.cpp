// SPDX-License-Identifier: Apache-2.0
// Prefix, suffix and editing: what is set is what is given back.
#include <array>
#include <climits>
#include <cstddef>
#include <ostream>
#include <string>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

constexpr std::size_t kRoom = QLBCR_TEXT_SIZE;
constexpr std::size_t kGuard = 64;

// A buffer of the size that callers promise, and what lies behind it.
class Buffer {
  public:
    Buffer() { bytes_.fill('#'); }
    char* Data() { return bytes_.data(); }
    std::string Text() const { return bytes_.data(); }
    bool IsUntouched() const { return IsFilled(0); }
    bool IsGuardUntouched() const { return IsFilled(kRoom); }

  private:
    bool IsFilled(std::size_t from) const {
        return std::string(bytes_.begin() + static_cast<std::ptrdiff_t>(from), bytes_.end()) ==
               std::string(bytes_.size() - from, '#');
    }

    std::array<char, kRoom + kGuard> bytes_{};
};

struct FixedText {
    const char* name;
    QLerr (*set)(unsigned int, const char*);
    QLerr (*get)(unsigned int*, char*);
};

std::ostream& operator<<(std::ostream& out, const FixedText& text) {
    return out << text.name;
}

const FixedText kFixedTexts[] = {{"Prefix", &QLBCR_SetPrefixData, &QLBCR_GetPrefixData},
                                 {"Suffix", &QLBCR_SetSuffixData, &QLBCR_GetSuffixData}};

class FixedTextSetting : public EnabledIntermec, public ::testing::WithParamInterface<FixedText> {
  protected:
    void ExpectSetting(unsigned int asTop, const std::string& text) {
        unsigned int flag = 0xAAAAAAAA;
        Buffer buffer;
        EXPECT_SUCCESS(GetParam().get(&flag, buffer.Data()));
        EXPECT_EQ(flag, asTop);
        EXPECT_EQ(buffer.Text(), text);
        EXPECT_TRUE(buffer.IsGuardUntouched());
    }
    void ExpectTooLong() {
        unsigned int flag = 0xAAAAAAAA;
        Buffer buffer;
        EXPECT_FAILURE(GetParam().get(&flag, buffer.Data()), QLERR_BUFFER_OVERFLOW, "Buffer size too small");
        EXPECT_EQ(flag, 0xAAAAAAAA);
        EXPECT_TRUE(buffer.IsUntouched());
    }
};

TEST_P(FixedTextSetting, IsGivenBack) {
    ExpectSetting(1, "");
    for (const std::size_t length : {0U, 1U, 5U, 126U, 127U}) {
        const std::string text(length, 'x');
        EXPECT_SUCCESS(GetParam().set(0, text.c_str()));
        ExpectSetting(0, text);
    }
    EXPECT_SUCCESS(GetParam().set(1, "\x01\xFF\xC3\xA4"));
    ExpectSetting(1, "\x01\xFF\xC3\xA4");
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_P(FixedTextSetting, IsKeptButNotGivenBackWhenItIsTooLong) {
    for (const std::size_t length : {128U, 129U, 200U, 5000U, 100000U}) {
        EXPECT_SUCCESS(GetParam().set(0, std::string(length, 'y').c_str()));
        ExpectTooLong();
    }
    EXPECT_SUCCESS(GetParam().set(1, "short again"));
    ExpectSetting(1, "short again");
}

TEST_P(FixedTextSetting, TakesNullForEmpty) {
    EXPECT_SUCCESS(GetParam().set(0, "text"));
    EXPECT_SUCCESS(GetParam().set(1, nullptr));
    ExpectSetting(1, "");
}

TEST_P(FixedTextSetting, KeepsTheLowestByteOfItsPlace) {
    const unsigned int places[][2] = {{0, 0},   {1, 1},   {2, 2},       {255, 255},
                                      {256, 0}, {257, 1}, {0x1FF, 255}, {UINT_MAX, 255}};
    for (const auto& [given, kept] : places) {
        EXPECT_SUCCESS(GetParam().set(given, "t"));
        ExpectSetting(kept, "t");
    }
}

TEST_P(FixedTextSetting, IsCopied) {
    std::string text = "before";
    EXPECT_SUCCESS(GetParam().set(1, text.data()));
    text = "behind";
    ExpectSetting(1, "before");
}

TEST_P(FixedTextSetting, WritesNothingWhenAPointerIsNull) {
    EXPECT_SUCCESS(GetParam().set(0, "text"));
    unsigned int flag = 77;
    EXPECT_FAILURE(GetParam().get(&flag, nullptr), QLERR_INVALID_ARGUMENT,
                   "OutStr cannot be NULL if OutStrSize is non-zero");
    EXPECT_EQ(flag, 77U);
    Buffer buffer;
    EXPECT_FAILURE(GetParam().get(nullptr, buffer.Data()), QLERR_INVALID_ARGUMENT, "pAsTop cannot be NULL");
    EXPECT_TRUE(buffer.IsUntouched());
}

TEST_P(FixedTextSetting, OutlivesDisablingAndEndsWithInitialising) {
    EXPECT_SUCCESS(GetParam().set(0, "text"));
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Enable());
    ExpectSetting(0, "text");
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    ASSERT_SUCCESS(QLBCR_Initialize());
    ASSERT_SUCCESS(QLBCR_Enable());
    ExpectSetting(1, "");
}

INSTANTIATE_TEST_SUITE_P(Texts, FixedTextSetting, ::testing::ValuesIn(kFixedTexts),
                         [](const auto& row) { return row.param.name; });

class EditSetting : public EnabledIntermec {
  protected:
    void ExpectSetting(unsigned int mode, const std::string& target, const std::string& content, int start, int end) {
        unsigned int givenMode = 0xAAAAAAAA;
        int givenStart = 4711;
        int givenEnd = 4711;
        Buffer givenTarget;
        Buffer givenContent;
        EXPECT_SUCCESS(
            QLBCR_GetDataEditingMode(&givenMode, givenTarget.Data(), givenContent.Data(), &givenStart, &givenEnd));
        EXPECT_EQ(givenMode, mode);
        EXPECT_EQ(givenTarget.Text(), target);
        EXPECT_EQ(givenContent.Text(), content);
        EXPECT_EQ(givenStart, start);
        EXPECT_EQ(givenEnd, end);
        EXPECT_TRUE(givenTarget.IsGuardUntouched());
        EXPECT_TRUE(givenContent.IsGuardUntouched());
    }
    // Fails with this text when the marked pointers are null, and writes nothing.
    void ExpectRefused(bool mode, bool target, bool content, bool start, bool end, QLerr code, const char* text) {
        unsigned int givenMode = 0xAAAAAAAA;
        int givenStart = 4711;
        int givenEnd = 4711;
        Buffer givenTarget;
        Buffer givenContent;
        EXPECT_FAILURE(QLBCR_GetDataEditingMode(mode ? nullptr : &givenMode, target ? nullptr : givenTarget.Data(),
                                                content ? nullptr : givenContent.Data(), start ? nullptr : &givenStart,
                                                end ? nullptr : &givenEnd),
                       code, text);
        EXPECT_EQ(givenMode, 0xAAAAAAAA);
        EXPECT_EQ(givenStart, 4711);
        EXPECT_EQ(givenEnd, 4711);
        EXPECT_TRUE(givenTarget.IsUntouched());
        EXPECT_TRUE(givenContent.IsUntouched());
    }
};

TEST_F(EditSetting, IsGivenBack) {
    ExpectSetting(QLBCR_EDIT_NONE, "", "", 0, 0);
    const std::string longest(127, 'l');
    EXPECT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, "a", "b", 1, 2));
    ExpectSetting(QLBCR_EDIT_REPLACE, "a", "b", 1, 2);
    EXPECT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_DELETE, longest.c_str(), longest.c_str(), INT_MIN, INT_MAX));
    ExpectSetting(QLBCR_EDIT_DELETE, longest, longest, INT_MIN, INT_MAX);
    EXPECT_SUCCESS(QLBCR_SetDataEditingMode(UINT_MAX, nullptr, nullptr, -1, 0));
    ExpectSetting(UINT_MAX, "", "", -1, 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{});
}

TEST_F(EditSetting, IsNotGivenBackWhenATextIsTooLong) {
    const std::string whole(127, 'w');
    for (const std::size_t length : {128U, 200U, 70000U}) {
        const std::string tooLong(length, 'l');
        EXPECT_SUCCESS(QLBCR_SetDataEditingMode(1, tooLong.c_str(), whole.c_str(), 1, 2));
        ExpectRefused(false, false, false, false, false, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
        EXPECT_SUCCESS(QLBCR_SetDataEditingMode(1, whole.c_str(), tooLong.c_str(), 1, 2));
        ExpectRefused(false, false, false, false, false, QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    }
}

TEST_F(EditSetting, IsNotGivenBackWhenAPointerIsNull) {
    constexpr const char* kNoText = "OutStr cannot be NULL if OutStrSize is non-zero";
    EXPECT_SUCCESS(QLBCR_SetDataEditingMode(1, "target", "content", 1, 2));
    ExpectRefused(true, false, false, false, false, QLERR_INVALID_ARGUMENT, "pEditMode cannot be NULL");
    ExpectRefused(false, true, false, false, false, QLERR_INVALID_ARGUMENT, kNoText);
    ExpectRefused(false, false, true, false, false, QLERR_INVALID_ARGUMENT, kNoText);
    ExpectRefused(false, false, false, true, false, QLERR_INVALID_ARGUMENT, "pStart cannot be NULL");
    ExpectRefused(false, false, false, false, true, QLERR_INVALID_ARGUMENT, "pEnd cannot be NULL");
    ExpectRefused(true, true, true, true, true, QLERR_INVALID_ARGUMENT, "pEditMode cannot be NULL");
}

TEST_F(EditSetting, OutlivesDisablingAndEndsWithInitialising) {
    EXPECT_SUCCESS(QLBCR_SetDataEditingMode(3, "t", "c", 1, -1));
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Enable());
    ExpectSetting(3, "t", "c", 1, -1);
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    ASSERT_SUCCESS(QLBCR_Initialize());
    ASSERT_SUCCESS(QLBCR_Enable());
    ExpectSetting(0, "", "", 0, 0);
}

}  // namespace
}  // namespace quarlin::test
