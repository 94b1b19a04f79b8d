// SPDX-License-Identifier: Apache-2.0
// The stand-in VM gives what a VM gives, and catches what it must catch: classes, members and references.
#include "stand_in_vm.h"

#include <gtest/gtest.h>

#include <thread>

namespace quarlin::test {

namespace {

using Texts = std::vector<std::string>;
using Thrown = std::optional<JavaException>;

constexpr const char* kPoint = "test/Point";

struct StandIn : testing::Test {
    StandInVm vm;

    void SetUp() override {
        vm.DefineClass(kPoint)
            .Constructor("()V")
            .Constructor("(IZDLjava/lang/String;)V")
            .Fields("I", {"x", "y"})
            .Field("name", "Ljava/lang/String;")
            .StaticField("ORIGIN", "Ltest/Point;", JavaRef{})
            .StaticMethod("told", "(IJLjava/lang/String;[BZ)V", [this](JavaCall& call) { told.push_back(call); })
            .StaticMethod("fails", "()V",
                          [](JavaCall&) {
                              throw JavaThrow{"java/lang/IllegalStateException", "no"};
                          })
            .Method("length", "()I", [](JavaCall& call) { call.result = jint{call.self->Int("x") + 1}; });
        vm.DefineClass("test/Other").Fields("I", {"x"}).StaticMethod("told", "()V");
    }

    std::vector<JavaCall> told;
};

TEST_F(StandIn, FindsClassesAndGivesJavasErrorForOthers) {
    NativeCall call(vm);
    EXPECT_EQ(call.Returned(call.Env()->FindClass("java/lang/String")), vm.Class("java/lang/String").object);
    EXPECT_EQ(call.Env()->FindClass("java.lang.String"), nullptr);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/NoClassDefFoundError", "java.lang.String"}));
    EXPECT_TRUE(call.Env()->ExceptionCheck());
    call.Env()->ExceptionClear();
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_FALSE(call.Env()->ExceptionCheck());
    vm.HideClass(kPoint);
    EXPECT_EQ(call.Env()->FindClass(kPoint), nullptr);
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/NoClassDefFoundError", kPoint}));
}

TEST_F(StandIn, RefusesASignatureForTheNameOfAClass) {
    NativeCall call(vm);
    EXPECT_EQ(call.Env()->FindClass("Ljava/lang/String;"), nullptr);
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"FindClass: a type's signature instead of a class's name: Ljava/lang/String;"}));
}

struct LookUp {
    const char* name;
    const char* error;
    const char* wanted;
    void (*find)(JNIEnv* env, jclass point);
};

void PrintTo(const LookUp& lookUp, std::ostream* stream) {
    *stream << lookUp.name;
}

struct StandInLookUp : StandIn, testing::WithParamInterface<LookUp> {};

TEST_P(StandInLookUp, GivesJavasErrorForAMemberThatIsNotThere) {
    NativeCall call(vm);
    GetParam().find(call.Env(), call.Class(kPoint));
    EXPECT_EQ(call.Thrown(), Thrown({GetParam().error, GetParam().wanted}));
}

INSTANTIATE_TEST_SUITE_P(
    Members, StandInLookUp,
    testing::Values(
        LookUp{"UnknownMethod", "java/lang/NoSuchMethodError", "area",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetMethodID(point, "area", "()I"), nullptr); }},
        LookUp{"MethodOfAnotherSignature", "java/lang/NoSuchMethodError", "length",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetMethodID(point, "length", "()J"), nullptr); }},
        LookUp{"StaticMethodAsAnother", "java/lang/NoSuchMethodError", "fails",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetMethodID(point, "fails", "()V"), nullptr); }},
        LookUp{"MethodAsStatic", "java/lang/NoSuchMethodError", "length",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetStaticMethodID(point, "length", "()I"), nullptr); }},
        LookUp{"UnknownConstructor", "java/lang/NoSuchMethodError", "<init>",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetMethodID(point, "<init>", "(J)V"), nullptr); }},
        LookUp{"UnknownField", "java/lang/NoSuchFieldError", "z",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetFieldID(point, "z", "I"), nullptr); }},
        LookUp{"FieldOfAnotherType", "java/lang/NoSuchFieldError", "x",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetFieldID(point, "x", "J"), nullptr); }},
        LookUp{"UnknownStaticField", "java/lang/NoSuchFieldError", "x",
               [](JNIEnv* env, jclass point) { EXPECT_EQ(env->GetStaticFieldID(point, "x", "I"), nullptr); }}),
    [](const auto& row) { return row.param.name; });

TEST_F(StandIn, MakesObjectsWithWhatTheConstructorIsGiven) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass point = call.Class(kPoint);
    const jmethodID constructor = env->GetMethodID(point, "<init>", "(IZDLjava/lang/String;)V");
    const JavaRef listed =
        call.Returned(env->NewObject(point, constructor, 7, jboolean{JNI_TRUE}, 1.5, call.Text("a")));
    jvalue values[4];
    values[0].i = 8;
    values[1].z = JNI_FALSE;
    values[2].d = 2.5;
    values[3].l = nullptr;
    const JavaRef inArray = call.Returned(env->NewObjectA(point, constructor, values));
    ASSERT_TRUE(listed && inArray);
    EXPECT_EQ(listed->constructor, "(IZDLjava/lang/String;)V");
    EXPECT_EQ(std::get<jint>(listed->arguments[0]), 7);
    EXPECT_EQ(std::get<jboolean>(listed->arguments[1]), JNI_TRUE);
    EXPECT_EQ(std::get<jdouble>(listed->arguments[2]), 1.5);
    EXPECT_EQ(TextOf(std::get<JavaRef>(listed->arguments[3])), "a");
    EXPECT_EQ(listed->Int("x"), 0);
    EXPECT_EQ(std::get<jint>(inArray->arguments[0]), 8);
    EXPECT_EQ(std::get<jdouble>(inArray->arguments[2]), 2.5);
    EXPECT_EQ(std::get<JavaRef>(inArray->arguments[3]), nullptr);
}

TEST_F(StandIn, CallsMethodsWithTheirArguments) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass point = call.Class(kPoint);
    const jmethodID method = env->GetStaticMethodID(point, "told", "(IJLjava/lang/String;[BZ)V");
    env->CallStaticVoidMethod(point, method, 3, jlong{1} << 40, call.Text("scan"), call.Pass(vm.Bytes({1, 255})),
                              jboolean{JNI_TRUE});
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].Int(0), 3);
    EXPECT_EQ(std::get<jlong>(told[0].arguments[1]), jlong{1} << 40);
    EXPECT_EQ(told[0].Text(2), "scan");
    EXPECT_EQ(told[0].Bytes(3), std::vector<std::uint8_t>({1, 255}));
    EXPECT_TRUE(told[0].Bool(4));
    EXPECT_FALSE(env->ExceptionCheck());
    const JavaRef object = vm.New(kPoint);
    object->fields["x"] = jint{41};
    const jmethodID length = env->GetMethodID(point, "length", "()I");
    EXPECT_EQ(env->CallIntMethod(call.Pass(object), length), 42);
}

TEST_F(StandIn, LetsAMethodThrow) {
    NativeCall call(vm);
    const jclass point = call.Class(kPoint);
    call.Env()->CallStaticVoidMethod(point, call.Env()->GetStaticMethodID(point, "fails", "()V"));
    EXPECT_EQ(call.Thrown(), Thrown({"java/lang/IllegalStateException", "no"}));
}

TEST_F(StandIn, CatchesArgumentsOfAnotherClassAndBooleansBeyondOne) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass point = call.Class(kPoint);
    const jmethodID method = env->GetStaticMethodID(point, "told", "(IJLjava/lang/String;[BZ)V");
    env->CallStaticVoidMethod(point, method, 3, jlong{4}, call.Pass(vm.Ints({1})), nullptr, jboolean{2});
    EXPECT_EQ(vm.TakeViolations(), Texts({"CallStaticVoidMethod: argument 3 of told is no Ljava/lang/String;",
                                          "CallStaticVoidMethod: a boolean that is neither true nor false"}));
}

TEST_F(StandIn, CatchesMembersOfOtherClassesAndKinds) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass point = call.Class(kPoint);
    const jobject other = call.Pass(vm.New("test/Other"));
    const jfieldID x = env->GetFieldID(point, "x", "I");
    const jfieldID name = env->GetFieldID(point, "name", "Ljava/lang/String;");
    env->SetIntField(other, x, 1);
    env->SetBooleanField(call.Pass(vm.New(kPoint)), x, JNI_TRUE);
    env->SetObjectField(call.Pass(vm.New(kPoint)), name, other);
    env->CallStaticVoidMethod(point, env->GetStaticMethodID(call.Class("test/Other"), "told", "()V"));
    env->SetIntField(nullptr, x, 1);
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"SetIntField: the field does not belong to test/Other", "SetBooleanField: x is a field of type I",
                     "SetObjectField: the value of name is no Ljava/lang/String;",
                     "CallStaticVoidMethod: the method does not belong to test/Point",
                     "SetIntField: null where an object is needed"}));
}

TEST_F(StandIn, FillsFields) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jclass point = call.Class(kPoint);
    const JavaRef object = vm.New(kPoint);
    const jobject reference = call.Pass(object);
    env->SetIntField(reference, env->GetFieldID(point, "y", "I"), -5);
    env->SetObjectField(reference, env->GetFieldID(point, "name", "Ljava/lang/String;"), call.Text("here"));
    EXPECT_EQ(object->Int("y"), -5);
    EXPECT_EQ(object->Text("name"), "here");
    EXPECT_THROW(object->Int("z"), std::logic_error);
}

// --- references ---

TEST_F(StandIn, CatchesReferencesThatAreGoneWrongOrOfAnotherThread) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    const jstring local = env->NewStringUTF("x");
    const jobject global = env->NewGlobalRef(local);
    env->DeleteLocalRef(local);
    env->GetStringLength(local);
    env->DeleteLocalRef(local);
    EXPECT_EQ(env->GetStringLength(static_cast<jstring>(global)), 1);
    env->DeleteGlobalRef(global);
    env->GetObjectClass(global);
    env->DeleteGlobalRef(global);
    env->GetObjectClass(reinterpret_cast<jobject>(std::uintptr_t{0x123456}));
    const jobject mine = env->NewStringUTF("y");
    std::thread([&] { NativeCall(vm).Returned(mine); }).join();
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"GetStringLength: a reference that was freed",
                     "DeleteLocalRef: not a local reference of this thread, or freed before",
                     "GetObjectClass: a reference that was freed",
                     "DeleteGlobalRef: not a global reference, or freed before", "GetObjectClass: not a reference",
                     "the result of a native method: a local reference of another thread"}));
}

TEST_F(StandIn, CatchesALoopThatLeavesReferences) {
    NativeCall call(vm);
    for (int i = 0; i < 17; ++i) {
        call.Env()->NewStringUTF("x");
    }
    EXPECT_EQ(call.Locals(), 17);
    EXPECT_EQ(vm.TakeViolations(), Texts({"more local references than the frame has room for: 16"}));
}

TEST_F(StandIn, GivesRoomThatIsAskedFor) {
    NativeCall call(vm);
    EXPECT_EQ(call.Env()->EnsureLocalCapacity(100), JNI_OK);
    for (int i = 0; i < 100; ++i) {
        call.Env()->NewStringUTF("x");
    }
    EXPECT_EQ(call.PeakLocals(), 100);
    EXPECT_EQ(vm.TakeViolations(), Texts());
}

TEST_F(StandIn, FreesWhatAPushedFrameHolds) {
    NativeCall call(vm);
    JNIEnv* const env = call.Env();
    EXPECT_EQ(env->PushLocalFrame(20), JNI_OK);
    const jobject inner = env->NewStringUTF("inner");
    const jobject kept = env->PopLocalFrame(env->NewStringUTF("kept"));
    EXPECT_EQ(call.ReturnedText(kept), "kept");
    EXPECT_EQ(call.Locals(), 1);
    EXPECT_EQ(vm.TakeViolations(), Texts());
    env->GetObjectClass(inner);
    env->PopLocalFrame(nullptr);
    EXPECT_EQ(vm.TakeViolations(),
              Texts({"GetObjectClass: a reference that was freed", "PopLocalFrame: no frame was pushed"}));
}

TEST_F(StandIn, FreesReferencesWhenTheNativeMethodReturns) {
    jobject left = nullptr;
    {
        NativeCall call(vm);
        left = call.Env()->NewStringUTF("x");
        call.Env()->PushLocalFrame(1);
    }
    EXPECT_EQ(vm.TakeViolations(), Texts({"a native method left a pushed frame"}));
    EXPECT_EQ(vm.References().locals, 0);
    NativeCall(vm).Returned(left);
    EXPECT_EQ(vm.TakeViolations(), Texts({"the result of a native method: a reference that was freed"}));
}

TEST_F(StandIn, ReportsEntriesThatItDoesNotHave) {
    NativeCall call(vm);
    EXPECT_EQ(call.Env()->MonitorEnter(call.Class(kPoint)), 0);
    EXPECT_EQ(call.Env()->CallStaticIntMethod(call.Class(kPoint), nullptr, 1, 2), 0);
    EXPECT_EQ(call.Env()->CallNonvirtualDoubleMethodA(nullptr, nullptr, nullptr, nullptr), 0.0);
    EXPECT_EQ(vm.TakeViolations(), Texts({"called an entry the stand-in does not have: MonitorEnter",
                                          "called an entry the stand-in does not have: CallStaticIntMethodV",
                                          "called an entry the stand-in does not have: CallNonvirtualDoubleMethodA"}));
}

TEST_F(StandIn, HasSomethingInEveryPlaceOfItsTable) {
    NativeCall call(vm);
    const auto* const places = reinterpret_cast<void* const*>(call.Env()->functions);
    for (std::size_t i = 4; i < sizeof(JNINativeInterface_) / sizeof(void*); ++i) {
        EXPECT_NE(places[i], nullptr) << i;
    }
}

}  // namespace

}  // namespace quarlin::test
