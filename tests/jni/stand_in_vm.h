// SPDX-License-Identifier: Apache-2.0
// A Java VM for tests: the function tables of jni.h over an object model of our own. It is as strict as a VM that
// checks its callers: every wrong use is recorded as a violation, and a violation that a test does not take fails the
// test.
//
//     StandInVm vm;
//     vm.DefineClass("com/norvane/quarlin/gps/Coordinates").Fields("D", {"d_fld_1", "d_fld_2", "d_fld_3"});
//     const JavaRef coordinates = vm.New("com/norvane/quarlin/gps/Coordinates");
//     NativeCall call(vm);
//     Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetCoordinates(call.Env(), call.Class(kGps), call.Pass(coordinates));
//     EXPECT_EQ(call.Thrown(), std::nullopt);
//     EXPECT_EQ(coordinates->Double("d_fld_1"), 47.5);
#pragma once

#include "stand_in_objects.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::test {

class VmCore;

// How often threads came and went.
struct ThreadCounts {
    int attaches = 0;  // of threads that were not attached
    int daemons = 0;   // those of them that were attached as daemons
    int detaches = 0;  // of threads that were attached
    int attached = 0;  // attached now, callers of native methods included

    bool operator==(const ThreadCounts&) const = default;
};

struct ReferenceCounts {
    int globals = 0;     // alive now
    int locals = 0;      // alive now in all threads, arguments of native methods not counted
    int peakLocals = 0;  // the most that any frame ever had
    int textPins = 0;    // GetStringUTFChars and GetStringChars without their release
    int arrayPins = 0;   // Get...ArrayElements without their release

    bool operator==(const ReferenceCounts&) const = default;
};

class StandInVm {
  public:
    // Has java/lang/Object, String, Class and the exceptions and errors of java.lang, java.io.IOException and
    // java.nio.BufferOverflowException.
    StandInVm();
    // Fails the test for every violation that was not taken and every ordered failure that was not reached.
    ~StandInVm();
    StandInVm(const StandInVm&) = delete;
    StandInVm& operator=(const StandInVm&) = delete;

    // The VM as the native side sees it. Stays usable (as a violation) after the stand-in is gone.
    JavaVM* Vm();

    // --- classes ---
    JavaClass& DefineClass(const std::string& name, std::string_view parent = "java/lang/Object");
    // With the constructors "()V" and "(Ljava/lang/String;)V".
    JavaClass& DefineException(const std::string& name, std::string_view parent = "java/lang/RuntimeException");
    // The class, also of an array ("[I"); one that is not defined fails the test with std::logic_error.
    JavaClass& Class(const std::string& name);
    // FindClass does not find it from now on; everything else goes on with it.
    void HideClass(const std::string& name);
    void ShowClass(const std::string& name);

    // --- objects ---
    // With zeroed fields; no constructor runs.
    JavaRef New(const std::string& className);
    JavaRef String(std::string_view utf8);
    JavaRef String(std::u16string_view text);
    JavaRef Bytes(std::vector<std::uint8_t> bytes);
    JavaRef Ints(std::vector<jint> values);
    JavaRef Chars(std::vector<jchar> values);
    JavaRef Booleans(std::vector<jboolean> values);
    JavaRef Doubles(std::vector<jdouble> values);
    JavaRef Array(const std::string& elementClass, std::vector<JavaRef> elements);

    // --- failures to order ---
    // The nth call of an entry from now on fails once: "NewByteArray" and the other New..., "GetStringUTFChars" and the
    // other pins: null and OutOfMemoryError (a pin with a code: null, and no error); "FindClass", "GetMethodID" and the
    // other look-ups: null and their error; "NewGlobalRef": null; "AttachCurrentThread", "GetJavaVM",
    // "EnsureLocalCapacity": code (JNI_ERR when not given); "GetEnv": code, and no environment. The names "NewObject"
    // and "CallStaticVoidMethod" stand for all three forms of the call; a call fails with OutOfMemoryError and never
    // reaches Java.
    void FailOn(const std::string& entry, int nth = 1);
    void FailOn(const std::string& entry, int nth, jint code);
    // Whether all ordered failures have happened. Forgets those that have not.
    bool TakeFailures();

    // --- what was seen ---
    std::vector<std::string> TakeViolations();
    ThreadCounts Threads() const;
    ReferenceCounts References() const;
    // The exceptions with which threads were detached, in order. Forgets them.
    std::vector<JavaException> TakeUncaught();
    // Calls of an entry since the start: CallsOf("FindClass").
    int CallsOf(const std::string& entry) const;
    // For the thread that asks.
    bool IsAttached() const;
    std::optional<JavaException> Pending() const;
    // What a reference of the calling thread stands for; null for null. A wrong reference is a violation.
    JavaRef Resolve(jobject reference);

    VmCore& Core() { return *core_; }

  private:
    std::shared_ptr<VmCore> core_;
};

// One call of a native method from Java: a frame of local references on a thread that Java knows. When it ends, every
// array that the call pinned must be released, every text too (unless the test says otherwise), every pushed frame
// popped, and no monitor of Java is left behind. What the call threw goes back to "Java".
class NativeCall {
  public:
    explicit NativeCall(StandInVm& vm);
    ~NativeCall();
    NativeCall(const NativeCall&) = delete;
    NativeCall& operator=(const NativeCall&) = delete;

    JNIEnv* Env() const { return env_; }

    // References for arguments; they do not count as references that the native method made.
    jobject Pass(const JavaRef& object);
    jclass Class(const std::string& name);
    jstring Text(std::string_view utf8);
    jstring Text(const JavaRef& string) { return static_cast<jstring>(Pass(string)); }
    // Pass<jintArray>(vm.Ints({1, 2})).
    template <typename Reference>
    Reference Pass(const JavaRef& object) {
        return static_cast<Reference>(Pass(object));
    }

    // The object that the native method returned; null for null.
    JavaRef Returned(jobject reference);
    std::string ReturnedText(jobject reference) { return TextOf(Returned(reference)); }
    // The exception that is pending, as the Java caller sees it. Stays pending until the call ends.
    std::optional<JavaException> Thrown() const;
    // Local references that this call made and has not deleted, and the most that it had at once.
    int Locals() const;
    int PeakLocals() const;

    // The native method may leave texts pinned.
    void MayKeepTexts() { mayKeepTexts_ = true; }

  private:
    StandInVm& vm_;
    JNIEnv* env_;
    bool mayKeepTexts_ = false;
};

}  // namespace quarlin::test
