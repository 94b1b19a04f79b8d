// SPDX-License-Identifier: Apache-2.0
// Texts of Java on their way to the functions of the barcode scanner.
#include "barcode_method.h"
#include "text_forms.h"

#include <gtest/gtest.h>

namespace quarlin::test {

namespace {

// One parameter for a text. The others are the same in each call.
struct Parameter {
    std::string name;
    // How the library sees the call, with # in the place of the text.
    std::string call;
    bool isWide;
    Invoke (*with)(const JavaRef& text);
    Script script;

    std::string Function() const { return call.substr(0, call.find('(')); }
    // With the text in UTF-8, or what else the library gets.
    std::string Call(const std::string& text) const {
        std::string whole = call;
        return whole.replace(whole.find('#'), 1, text);
    }
    std::string CallWith(const std::string& text) const { return Call('"' + text + '"'); }
};

void PrintTo(const Parameter& parameter, std::ostream* stream) {
    *stream << parameter.name;
}

const std::vector<Parameter> kParameters{
    {"Symbology", "QLBCR_EnableSymbology(1, #)", true,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(EnableSymbology), JNI_TRUE, text); },
     ScriptFor(QLBCR_EnableSymbology)},
    {"SoundFile", "QLBCR_SetReadSuccessSoundFile(#)", true,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(SetSReadSuccessSoundFile), text); },
     ScriptFor(QLBCR_SetReadSuccessSoundFile)},
    {"Prefix", "QLBCR_SetPrefixData(0, #)", false,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(SetPrefixData), JNI_FALSE, text); },
     ScriptFor(QLBCR_SetPrefixData)},
    {"Suffix", "QLBCR_SetSuffixData(0, #)", false,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(SetSuffixData), JNI_FALSE, text); },
     ScriptFor(QLBCR_SetSuffixData)},
    {"EditingTarget", "QLBCR_SetDataEditingMode(2, #, null, 5, 6)", false,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(SetDataEditingMode), 2, text, JavaRef(), 5, 6); },
     ScriptFor(QLBCR_SetDataEditingMode)},
    {"EditingCont", "QLBCR_SetDataEditingMode(2, null, #, 5, 6)", false,
     [](const JavaRef& text) { return Barcode(QL_BARCODE(SetDataEditingMode), 2, JavaRef(), text, 5, 6); },
     ScriptFor(QLBCR_SetDataEditingMode)},
};

class BarcodeTextArgument : public NativeMethodTest, public testing::TestWithParam<Parameter> {
  protected:
    // What the library sees when Java gives this text; that must succeed, and leave nothing pinned.
    Calls CallsWith(const JavaRef& text) {
        NativeCall call(vm);
        EXPECT_EQ(GetParam().with(text)(call).number, 0);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(vm.References().textPins, 0);
        EXPECT_EQ(call.Locals(), 0);
        return flat.TakeCalls();
    }
    Calls CallsWith(std::string_view text) { return CallsWith(vm.String(text)); }
};

INSTANTIATE_TEST_SUITE_P(Each, BarcodeTextArgument, testing::ValuesIn(kParameters),
                         [](const testing::TestParamInfo<Parameter>& row) { return row.param.name; });

std::string Times(int count, const std::string& text) {
    std::string whole;
    for (int i = 0; i < count; ++i) {
        whole += text;
    }
    return whole;
}

TEST_P(BarcodeTextArgument, IsANullPointerForNull) {
    EXPECT_EQ(CallsWith(JavaRef()), Calls{GetParam().Call("null")});
    EXPECT_EQ(flat.TakeHelperCalls(), Calls{});
}

TEST_P(BarcodeTextArgument, ArrivesInTheLibrarysOwnForm) {
    for (const char* const text : {"", "x", "Zähler 5 €", "漢字"}) {
        EXPECT_EQ(CallsWith(text), Calls{GetParam().CallWith(text)});
    }
}

TEST_P(BarcodeTextArgument, IsConvertedByTheLibrarysOwnHelper) {
    CallsWith("Zähler");
    const std::string helper = GetParam().isWide ? "QLSTR_NarrowToWide" : "QLSTR_StrCopyAnsi";
    EXPECT_EQ(flat.TakeHelperCalls(), Calls{helper + "(128, \"Zähler\")"});
}

TEST_P(BarcodeTextArgument, MayHave127Elements) {
    const std::string text(127, 'x');
    EXPECT_EQ(CallsWith(text), Calls{GetParam().CallWith(text)});
}

TEST_P(BarcodeTextArgument, ThatIsTooLongIsCutOrEmpty) {
    for (const std::size_t length : {128U, 129U, 1000U}) {
        const std::string arrives = GetParam().isWide ? "" : std::string(127, 'x');
        EXPECT_EQ(CallsWith(std::string(length, 'x')), Calls{GetParam().CallWith(arrives)});
    }
}

TEST_P(BarcodeTextArgument, IsCutWithinACharacter) {
    struct {
        int before;
        std::string character;
        std::string cut;
    } const rows[] = {
        {126, "ä", "\xC3"},      // U+00E4
        {125, "€", "\xE2\x82"},  // U+20AC
        {126, "€", "\xE2"},      //
        {125, "äx", "ä"},        // after it
        {124, "€x", "€"},        //
        {125, "x€", "x\xE2"},    // behind another one
    };
    for (const auto& row : rows) {
        const std::string before(static_cast<std::size_t>(row.before), 'x');
        const std::string whole = before + row.character;
        const std::string arrives = GetParam().isWide ? whole : before + row.cut;
        EXPECT_EQ(CallsWith(whole), Calls{GetParam().CallWith(arrives)});
    }
}

TEST_P(BarcodeTextArgument, CountsCharactersForAWideFunctionAndBytesForANarrowOne) {
    const std::string text = Times(127, "ä");
    EXPECT_EQ(CallsWith(text), Calls{GetParam().CallWith(GetParam().isWide ? text : Times(63, "ä") + "\xC3")});
    EXPECT_EQ(CallsWith(text + "ä"), Calls{GetParam().CallWith(GetParam().isWide ? "" : Times(63, "ä") + "\xC3")});
}

// Java's own form of UTF-8 is what reaches the library: a surrogate pair, a half of one and U+0000 are no UTF-8.
TEST_P(BarcodeTextArgument, IsTakenAsItIsInJavasForm) {
    for (const char16_t* const text : {u"a\xD83D\xDE00z", u"a\xD83Dz", u"a\xDE00z"}) {
        const std::string bytes = ToModifiedUtf8(text);
        const std::string arrives = GetParam().isWide ? Narrow(Widen(bytes)) : bytes;
        EXPECT_EQ(CallsWith(vm.String(text)), Calls{GetParam().CallWith(arrives)});
    }
    const std::u16string zero = {u'a', u'\0', u'z'};
    const std::string arrives = GetParam().isWide ? Narrow(Widen("a\xC0\x80z")) : "a\xC0\x80z";
    EXPECT_EQ(CallsWith(vm.String(zero)), Calls{GetParam().CallWith(arrives)});
}

TEST_P(BarcodeTextArgument, ThatTheVmCannotGiveEndsTheCall) {
    flat.LeaveError(QLERR_IO_ERROR, "Of an earlier call");
    vm.FailOn("GetStringUTFChars");
    NativeCall call(vm);
    EXPECT_EQ(GetParam().with(vm.String("text"))(call).number, 0);
    ASSERT_TRUE(call.Thrown());
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
    EXPECT_EQ(flat.TakeCalls(), Calls{});
    EXPECT_EQ(flat.TakeHelperCalls(), Calls{});
    EXPECT_EQ(flat.Error(), (FlatError{QLERR_IO_ERROR, "Of an earlier call"}));
}

// A VM without memory for the copy need not say so.
TEST_P(BarcodeTextArgument, ThatTheVmKeepsWithoutAnErrorIsAFailureOfOurOwn) {
    vm.FailOn("GetStringUTFChars", 1, JNI_ENOMEM);
    NativeCall call(vm);
    EXPECT_EQ(GetParam().with(vm.String("text"))(call).number, 0);
    EXPECT_EQ(call.Thrown(), BarcodeFailure(QLERR_INTERNAL_ERROR, "An unknown error occurred"));
    EXPECT_EQ(flat.TakeCalls(), Calls{});
}

TEST_P(BarcodeTextArgument, IsReleasedWhateverTheLibrarySays) {
    for (const std::function<QLerr()>& body :
         {kThrowsBadAlloc, kThrowsInt, std::function<QLerr()>([] { return QLERR_IO_ERROR; })}) {
        GetParam().script(flat, GetParam().Function(), body);
        NativeCall call(vm);
        GetParam().with(vm.String("text"))(call);
        EXPECT_NE(call.Thrown(), std::nullopt);
        EXPECT_EQ(vm.References().textPins, 0);
    }
}

class BarcodeEditing : public NativeMethodTest, public testing::Test {};

TEST_F(BarcodeEditing, TellsItsTextsApart) {
    NativeCall call(vm);
    Barcode(QL_BARCODE(SetDataEditingMode), 3, "target", "cont", 1, 2)(call);
    EXPECT_EQ(flat.TakeCalls(), Calls{"QLBCR_SetDataEditingMode(3, \"target\", \"cont\", 1, 2)"});
}

TEST_F(BarcodeEditing, ReleasesTheFirstTextWhenThereIsNoSecond) {
    vm.FailOn("GetStringUTFChars", 2);
    NativeCall call(vm);
    EXPECT_EQ(Barcode(QL_BARCODE(SetDataEditingMode), 3, "target", "cont", 1, 2)(call).number, 0);
    ASSERT_TRUE(call.Thrown());
    EXPECT_EQ(call.Thrown()->className, "java/lang/OutOfMemoryError");
    EXPECT_EQ(flat.TakeCalls(), Calls{});
    EXPECT_EQ(vm.References().textPins, 0);
}

}  // namespace

}  // namespace quarlin::test
