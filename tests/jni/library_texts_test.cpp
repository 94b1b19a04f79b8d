// SPDX-License-Identifier: Apache-2.0
// com.norvane.quarlin.Library: texts about the library and the machine, which never raise a failure of the library.
#include "native_method.h"
#include "text_forms.h"

#include "com_norvane_quarlin_Library.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace quarlin::test {

namespace {

struct TextMethod {
    std::string name;
    std::string function;
    Invoke invoke;
    Script script;
};

void PrintTo(const TextMethod& method, std::ostream* stream) {
    *stream << method.name;
}

class LibraryText : public NativeMethodTest, public testing::TestWithParam<TextMethod> {
  protected:
    // The library has this text, for as much room as it needs.
    void Has(const std::string& text) {
        flat.Does(GetParam().function, [wide = Widen(text)](wchar_t* buffer, int* count) {
            const auto needed = static_cast<int>(wide.size() + 1);
            if (*count < needed) {
                return QLERR_BUFFER_OVERFLOW;
            }
            std::copy_n(wide.c_str(), needed, buffer);
            *count = needed;
            return QLERR_OK;
        });
    }

    // Java's text; nothing may be thrown.
    std::string Get() {
        NativeCall call(vm);
        const JavaRef text = GetParam().invoke(call).object;
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 1);
        return TextOf(text);
    }
};

constexpr const char* kLibrary = "com/norvane/quarlin/Library";

INSTANTIATE_TEST_SUITE_P(
    Each, LibraryText,
    testing::Values(TextMethod{"SDKVersion", "QLLIB_GetSDKVersion",
                               Calling(kLibrary, Java_com_norvane_quarlin_Library_QLLIB_1GetSDKVersion),
                               ScriptFor(QLLIB_GetSDKVersion)},
                    TextMethod{"ModelNumber", "QLLIB_GetModelNumber",
                               Calling(kLibrary, Java_com_norvane_quarlin_Library_QLLIB_1GetModelNumber),
                               ScriptFor(QLLIB_GetModelNumber)}),
    [](const testing::TestParamInfo<TextMethod>& row) { return row.param.name; });

TEST_P(LibraryText, IsWhatTheLibrarySays) {
    for (const std::string& text : {std::string(), std::string("3.0.1000.0"), std::string("Prüfgerät ß"),
                                    std::string("x \U0001F600 y"), std::string("漢字")}) {
        Has(text);
        EXPECT_EQ(Get(), text);
        EXPECT_EQ(flat.TakeCalls(), Calls{GetParam().function + "(250)"});
    }
}

TEST_P(LibraryText, MayHave249Characters) {
    for (const std::string character : {"x", "ü", "漢"}) {
        std::string text;
        for (int i = 0; i < 249; ++i) {
            text += character;
        }
        Has(text);
        EXPECT_EQ(Get(), text);
        Has(text + character);
        EXPECT_EQ(Get(), "");
    }
}

TEST_P(LibraryText, IsEmptyWhenTheLibraryFails) {
    for (const QLerr code : kFailures) {
        flat.Fails(GetParam().function, code, "error.");
        EXPECT_EQ(Get(), "");
    }
}

TEST_P(LibraryText, EndsWhereTheBufferEnds) {
    flat.Does(GetParam().function, [](wchar_t* buffer, int* count) {
        std::fill_n(buffer, *count, L'x');
        return QLERR_OK;
    });
    EXPECT_EQ(Get(), std::string(249, 'x'));
}

TEST_P(LibraryText, IsEmptyWhenTheCountIsTooSmallForIt) {
    for (const int size : {0, 1}) {
        flat.Does(GetParam().function, [size](wchar_t* buffer, int* count) {
            std::copy_n(L"xxxxxxxx", 9, buffer);
            *count = size;
            return QLERR_OK;
        });
        EXPECT_EQ(Get(), "");
    }
}

TEST_P(LibraryText, IsConvertedByTheLibrarysOwnHelper) {
    Has("3.0");
    Get();
    EXPECT_EQ(flat.TakeHelperCalls(), Calls{"QLSTR_WideToNarrow(12, \"3.0\")"});
}

TEST_P(LibraryText, IsNullWhenTheVmCannotMakeIt) {
    Has("3.0");
    vm.FailOn("NewStringUTF");
    NativeCall call(vm);
    EXPECT_EQ(GetParam().invoke(call).object, nullptr);
    ASSERT_TRUE(call.Thrown());
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
}

TEST_P(LibraryText, LetsNoCppExceptionOut) {
    for (const auto& throws : {kThrowsBadAlloc, kThrowsInt}) {
        GetParam().script(flat, GetParam().function, throws);
        NativeCall call(vm);
        EXPECT_EQ(GetParam().invoke(call).object, nullptr);
        EXPECT_EQ(call.Thrown(), PlainFailure(QLERR_INTERNAL_ERROR, "An unknown error occurred"));
    }
}

}  // namespace

}  // namespace quarlin::test
