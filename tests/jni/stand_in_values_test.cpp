// SPDX-License-Identifier: Apache-2.0
// Texts and arrays of the stand-in VM.
#include "stand_in_vm.h"
#include "text_forms.h"

#include <gtest/gtest.h>

#include <array>

namespace quarlin::test {

namespace {

using Texts = std::vector<std::string>;
using Thrown = std::optional<JavaException>;
using namespace std::string_literals;
using namespace std::string_view_literals;

struct StandInValues : testing::Test {
    StandInVm vm;
};

TEST(TextForms, GiveJavasFormOfUtf8AndBack) {
    const std::u16string text = u"a\0\u00E9\u20AC\U0001F600\xD800"s;
    const auto modified = "a\xC0\x80\xC3\xA9\xE2\x82\xAC\xED\xA0\xBD\xED\xB8\x80\xED\xA0\x80"s;
    EXPECT_EQ(ToModifiedUtf8(text), modified);
    EXPECT_EQ(FromModifiedUtf8(modified), text);
    EXPECT_EQ(ToUtf8(text), "a\0\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD"s);
    EXPECT_EQ(FromUtf8("a\xC3\xA9\xF0\x9F\x98\x80"), u"a\u00E9\U0001F600");
    EXPECT_EQ(Narrow(Widen("a\xC3\xA9\xF0\x9F\x98\x80")), "a\xC3\xA9\xF0\x9F\x98\x80");
}

class WrongModifiedUtf8 : public testing::TestWithParam<std::pair<const char*, std::string_view>> {};

TEST_P(WrongModifiedUtf8, IsRefused) {
    EXPECT_EQ(FromModifiedUtf8(GetParam().second), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Bytes, WrongModifiedUtf8,
                         testing::Values(std::pair{"ZeroByte", "a\0b"sv}, std::pair{"Continuation", "\x80"sv},
                                         std::pair{"FourBytes", "\xF0\x9F\x98\x80"sv}, std::pair{"NoLead", "\xFF"sv},
                                         std::pair{"CutTwo", "\xC3"sv}, std::pair{"CutThree", "\xE2\x82"sv},
                                         std::pair{"LongTwo", "\xC1\xA1"sv}, std::pair{"LongThree", "\xE0\x83\xA9"sv},
                                         std::pair{"LatinOne", "caf\xE9 x"sv}),
                         [](const auto& row) { return row.param.first; });

TEST_F(StandInValues, MakesTextsAndReadsThem) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jstring text = call.Text(vm.String(u"a\0\U0001F600"s));
    EXPECT_EQ(env->GetStringLength(text), 4);
    EXPECT_EQ(env->GetStringUTFLength(text), 9);
    jboolean isCopy = JNI_FALSE;
    const char* const bytes = env->GetStringUTFChars(text, &isCopy);
    EXPECT_STREQ(bytes, "a\xC0\x80\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(isCopy, JNI_TRUE);
    EXPECT_EQ(vm.References().textPins, 1);
    env->ReleaseStringUTFChars(text, bytes);
    EXPECT_EQ(vm.References().textPins, 0);
    std::array<jchar, 2> part{};
    env->GetStringRegion(text, 2, 2, part.data());
    EXPECT_EQ(part, (std::array<jchar, 2>{0xD83D, 0xDE00}));
    env->GetStringRegion(text, 3, 2, part.data());
    EXPECT_EQ(call.Thrown()->className, "java/lang/StringIndexOutOfBoundsException");
    env->ExceptionClear();
    const std::array<jchar, 3> units{'x', 0, 0xD800};
    EXPECT_EQ(call.Returned(env->NewString(units.data(), 3))->characters, u"x\0\xD800"s);
    EXPECT_EQ(call.ReturnedText(env->NewStringUTF("\xC3\xA9")), "\xC3\xA9");
}

TEST_F(StandInValues, CatchesBytesThatAreNoText) {
    NativeCall call(vm);
    EXPECT_EQ(call.ReturnedText(call.Env()->NewStringUTF("caf\xE9")), "caf\xEF\xBF\xBD");
    call.Env()->GetStringLength(static_cast<jstring>(call.Pass(vm.Ints({1}))));
    call.Env()->GetStringUTFChars(nullptr, nullptr);
    EXPECT_EQ(vm.TakeViolations(), Texts({"NewStringUTF: bytes that are not modified UTF-8",
                                          "GetStringLength: not a string: an object of [I",
                                          "GetStringUTFChars: null where an object is needed"}));
}

TEST_F(StandInValues, CatchesPinsThatAreReleasedWrongly) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const auto array = call.Pass<jintArray>(vm.Ints({1, 2}));
    const auto other = call.Pass<jintArray>(vm.Ints({1, 2}));
    jint* const elements = env->GetIntArrayElements(array, nullptr);
    jint beside = 0;
    env->ReleaseIntArrayElements(array, &beside, 0);
    env->ReleaseIntArrayElements(other, elements, 0);
    env->ReleaseIntArrayElements(array, elements, 9);
    env->ReleaseIntArrayElements(array, elements, 0);
    env->ReleaseIntArrayElements(array, elements, 0);
    env->GetByteArrayElements(static_cast<jbyteArray>(static_cast<jobject>(array)), nullptr);
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"ReleaseIntArrayElements: memory that is not pinned",
                     "ReleaseIntArrayElements: memory that was pinned for another object",
                     "ReleaseIntArrayElements: an unknown mode", "ReleaseIntArrayElements: memory that is not pinned",
                     "GetByteArrayElements: not an array of that kind: an object of [I"}));
}

TEST_F(StandInValues, TellsOfPinsWhenTheNativeMethodReturns) {
    {
        NativeCall call(vm);
        call.Env()->GetIntArrayElements(call.Pass<jintArray>(vm.Ints({1})), nullptr);
    }
    EXPECT_EQ(vm.TakeViolations(), Texts({"a native method left an array pinned"}));
    {
        NativeCall call(vm);
        call.Env()->GetStringUTFChars(call.Text("kept"), nullptr);
    }
    EXPECT_EQ(vm.TakeViolations(), Texts({"a native method left a text pinned"}));
    {
        NativeCall call(vm);
        call.MayKeepTexts();
        call.Env()->GetStringUTFChars(call.Text("kept"), nullptr);
    }
    EXPECT_EQ(vm.TakeViolations(), Texts());
}

TEST_F(StandInValues, WritesPinnedElementsBackAsTheModeSays) {
    const JavaRef ints = vm.Ints({1, 2});
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const auto array = call.Pass<jintArray>(ints);
    jint* elements = env->GetIntArrayElements(array, nullptr);
    elements[0] = 10;
    EXPECT_EQ(IntsOf(ints), std::vector<jint>({1, 2}));
    env->ReleaseIntArrayElements(array, elements, JNI_COMMIT);
    EXPECT_EQ(IntsOf(ints), std::vector<jint>({10, 2}));
    elements[1] = 20;
    env->ReleaseIntArrayElements(array, elements, JNI_ABORT);
    EXPECT_EQ(IntsOf(ints), std::vector<jint>({10, 2}));
    elements = env->GetIntArrayElements(array, nullptr);
    elements[1] = 21;
    env->ReleaseIntArrayElements(array, elements, 0);
    EXPECT_EQ(IntsOf(ints), std::vector<jint>({10, 21}));
    EXPECT_EQ(ints->releaseModes, std::vector<jint>({JNI_COMMIT, JNI_ABORT, 0}));
    EXPECT_EQ(vm.References().arrayPins, 0);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
// Where no sanitizer sees it at once.
TEST_F(StandInValues, CatchesAWriteBesideThePinnedElements) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const auto array = call.Pass<jbyteArray>(vm.Bytes({1, 2}));
    jbyte* const elements = env->GetByteArrayElements(array, nullptr);
    elements[2] = 3;
    env->ReleaseByteArrayElements(array, elements, 0);
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"ReleaseByteArrayElements: the memory beside the pinned elements was written to"}));
}
#endif

TEST_F(StandInValues, CopiesRegionsAndRefusesThoseThatAreNotThere) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jbyteArray array = env->NewByteArray(4);
    const std::array<jbyte, 2> bytes{7, -1};
    env->SetByteArrayRegion(array, 2, 2, bytes.data());
    EXPECT_EQ(BytesOf(call.Returned(array)), std::vector<std::uint8_t>({0, 0, 7, 255}));
    std::array<jbyte, 2> out{};
    env->GetByteArrayRegion(array, 1, 2, out.data());
    EXPECT_EQ(out, (std::array<jbyte, 2>{0, 7}));
    env->SetByteArrayRegion(array, 3, 2, bytes.data());
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/ArrayIndexOutOfBoundsException", "3+2 of 4"}));
    env->ExceptionClear();
    EXPECT_EQ(env->NewIntArray(-1), nullptr);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/NegativeArraySizeException", "-1"}));
    env->ExceptionClear();
    EXPECT_EQ(env->GetArrayLength(array), 4);
    EXPECT_EQ(env->GetArrayLength(call.Pass<jarray>(vm.Doubles({1.5, 2.5, 3.5}))), 3);
    EXPECT_EQ(env->GetArrayLength(call.Pass<jarray>(vm.Chars({'a'}))), 1);
    EXPECT_EQ(env->GetArrayLength(call.Pass<jarray>(vm.Booleans({}))), 0);
}

TEST_F(StandInValues, KeepsObjectsOfTheArraysClassAlone) {
    vm.DefineClass("test/Base");
    vm.DefineClass("test/Derived", "test/Base");
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jobjectArray array = env->NewObjectArray(2, call.Class("test/Base"), nullptr);
    const JavaRef derived = vm.New("test/Derived");
    env->SetObjectArrayElement(array, 1, call.Pass(derived));
    EXPECT_EQ(ObjectsOf(call.Returned(array)), std::vector<JavaRef>({nullptr, derived}));
    EXPECT_EQ(call.Returned(env->GetObjectArrayElement(array, 1)), derived);
    env->SetObjectArrayElement(array, 0, call.Text("no base"));
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/ArrayStoreException", "java/lang/String"}));
    env->ExceptionClear();
    env->SetObjectArrayElement(array, 2, nullptr);
    EXPECT_EQ(call.Thrown()->className, "java/lang/ArrayIndexOutOfBoundsException");
    env->ExceptionClear();
    EXPECT_EQ(call.Returned(array)->type->Name(), "[Ltest/Base;");
    EXPECT_TRUE(env->IsInstanceOf(call.Pass(derived), call.Class("test/Base")));
    EXPECT_FALSE(env->IsInstanceOf(array, call.Class("test/Base")));
}

}  // namespace

}  // namespace quarlin::test
