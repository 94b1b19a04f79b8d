// SPDX-License-Identifier: Apache-2.0
#include "core/quarlin_exception.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin {
namespace {

static_assert(std::is_base_of_v<std::runtime_error, QuarlinException>);
static_assert(std::has_virtual_destructor_v<QuarlinException>);

// What a raiser throws; code QLERR_OK and an empty text for one that returns.
template <typename Raiser>
QuarlinException Thrown(Raiser&& raise) {
    try {
        raise();
    } catch (const QuarlinException& failure) {
        return failure;
    }
    return {QLERR_OK, ""};
}

TEST(QuarlinException, CarriesCodeAndTextThroughCopies) {
    const QuarlinException original(QLERR_BUFFER_OVERFLOW, "Buffer size too small");
    const QuarlinException copy = original;
    EXPECT_EQ(copy.code, QLERR_BUFFER_OVERFLOW);
    EXPECT_STREQ(copy.what(), "Buffer size too small");
    const std::exception& base = copy;
    EXPECT_STREQ(base.what(), "Buffer size too small");
}

TEST(ThrowWin32Error, ReadsContextCodeAndSystemText) {
    for (const DWORD code : {DWORD{ERROR_SUCCESS}, DWORD{ERROR_ACCESS_DENIED}, DWORD{0x8007007A}, DWORD{0x80070057}}) {
        const QuarlinException thrown = Thrown([&] { ThrowWin32Error("Context", code); });
        EXPECT_EQ(thrown.code, QLERR_INTERNAL_ERROR);
        EXPECT_EQ(thrown.what(), test::Win32Message("Context", code));
    }
}

TEST(ThrowWin32Error, WritesEightUpperCaseDigits) {
    const std::string text = Thrown([] { ThrowWin32Error("", 0x8007007A); }).what();
    EXPECT_EQ(text.substr(0, 25), "\nWin32 Error 0x8007007A: ");
    const std::string padded = Thrown([] { ThrowWin32Error("", 5); }).what();
    EXPECT_EQ(padded.substr(0, 25), "\nWin32 Error 0x00000005: ");
}

TEST(ThrowWin32Error, PrintsAndReturnsWithoutASystemText) {
    bool returned = false;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(Thrown([&] {
                  ThrowWin32Error("Context", 0xE0001234);
                  returned = true;
              }).code,
              QLERR_OK);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Error in FormatMessage: 13d\n");
    EXPECT_TRUE(returned);
}

TEST(ThrowWin32Error, FreesTheSystemsText) {
    const auto round = [] { Thrown([] { ThrowWin32Error("Context", ERROR_ACCESS_DENIED); }); };
    for (int i = 0; i < 100; ++i) {
        round();
    }
    const size_t before = test::CountHeapBlocks();
    for (int i = 0; i < 200; ++i) {
        round();
    }
    EXPECT_EQ(test::CountHeapBlocks(), before);
}

TEST(ThrowHResultError, WritesLowerCaseDigitsWithoutPadding) {
    struct Case {
        std::uint32_t hresult;
        const char* text;
    };
    for (const Case& test :
         {Case{0x80041003, "Context\nWin32 HRESULT: 80041003"}, Case{0x8004100E, "Context\nWin32 HRESULT: 8004100e"},
          Case{0xFFFFFFFF, "Context\nWin32 HRESULT: ffffffff"}, Case{1, "Context\nWin32 HRESULT: 1"},
          Case{0, "Context\nWin32 HRESULT: 0"}, Case{0xABC, "Context\nWin32 HRESULT: abc"}}) {
        const QuarlinException thrown =
            Thrown([&] { ThrowHResultError("Context", static_cast<std::int32_t>(test.hresult)); });
        EXPECT_EQ(thrown.code, QLERR_INTERNAL_ERROR);
        EXPECT_STREQ(thrown.what(), test.text);
    }
}

}  // namespace
}  // namespace quarlin
