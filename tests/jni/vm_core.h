// SPDX-License-Identifier: Apache-2.0
// What lies behind the tables of the stand-in VM: threads, references, pinned memory, failures to order. For the
// entries of the tables; tests use stand_in_vm.h.
#pragma once

#include "stand_in_vm.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace quarlin::test {

inline constexpr int kFrameRoom = 16;  // what a frame is promised to hold

// References are numbers that are used once, so that one that is gone is never taken for another one.
using ReferenceId = std::uint64_t;

class VmCore;

struct LocalFrame {
    std::map<ReferenceId, JavaRef> arguments;
    std::map<ReferenceId, JavaRef> locals;
    std::size_t room = kFrameRoom;
    std::size_t peak = 0;
    bool overfull = false;  // said once
    bool pushed = false;    // by PushLocalFrame, not by a call from Java
};

// A thread as the VM knows it. What the native side holds as JNIEnv* is the address of one; they stay until the VM
// goes, so that the use of an old one is seen.
struct VmThread : JNIEnv {
    VmCore* core = nullptr;
    std::thread::id id;
    bool attached = true;
    JavaRef pending;
    // The entry whose exception nobody has asked for yet.
    const char* unasked = nullptr;
    int calls = 0;            // native methods running
    bool madeByCall = false;  // known only for the time of a native call
    std::vector<LocalFrame> frames;
};

// Memory that was handed out for the characters of a string or the elements of an array.
struct Pin {
    JavaRef object;
    char kind;  // 'u' UTF text, 'c' characters of a string, or the element's letter ('I')
    VmThread* thread;
    std::size_t depth;  // frames of the thread
    std::unique_ptr<std::byte[]> memory;
    std::size_t size;
};

struct OrderedFailure {
    std::string entry;
    int left;
    std::optional<jint> code;
};

class VmCore : public JavaVM {
  public:
    VmCore();

    std::recursive_mutex mutex;
    bool closed = false;  // the StandInVm is gone
    std::map<std::string, std::unique_ptr<JavaClass>, std::less<>> classes;
    std::set<std::string> hidden;
    std::vector<std::unique_ptr<VmThread>> threads;
    std::map<std::thread::id, VmThread*> current;
    std::map<ReferenceId, JavaRef> globals;
    std::map<const void*, Pin> pins;
    std::vector<OrderedFailure> failures;
    std::map<std::string, int, std::less<>> calls;
    std::vector<std::string> violations;
    std::vector<JavaException> uncaught;
    ThreadCounts counts;
    std::size_t peakLocals = 0;

    void Violate(const std::string& text);
    // Counts the call, and says whether it was ordered to fail.
    std::optional<OrderedFailure> Enter(std::string_view entry);

    JavaClass& Define(const std::string& name, std::string_view parent);
    // Classes of arrays are made when they are asked for. Null when there is none.
    JavaClass* FindClass(const std::string& name);
    JavaRef New(JavaClass& type);
    JavaRef NewText(std::u16string text);
    void Raise(VmThread& thread, const std::string& className, const std::string& message);

    VmThread* CurrentThread();
    VmThread& Attach(bool byCall);
    void Detach(VmThread& thread);
    void LeaveFrame(VmThread& thread);

    // A new local reference in the innermost frame; null for null.
    jobject NewLocal(VmThread& thread, const JavaRef& object);
    jobject NewArgument(VmThread& thread, const JavaRef& object);
    // Null, with a violation, for a reference that the thread must not use.
    JavaRef Resolve(VmThread& thread, const char* entry, jobject reference);
    bool DeleteLocal(VmThread& thread, jobject reference);
    jobject NewGlobal(const JavaRef& object);
    bool DeleteGlobal(jobject reference);

    void* MakePin(VmThread& thread, const JavaRef& object, char kind, const void* bytes, std::size_t size);
    // Null, with a violation, when the memory is not that of a pin of this object and kind.
    Pin* FindPin(const char* entry, const JavaRef& object, char kind, const void* memory);
    // Violation when the memory around the pinned bytes was written to.
    void CheckPin(const char* entry, const Pin& pin);

  private:
    ReferenceId next_ = 1;
};

// One call of an entry of the JNIEnv table: what each of them does first, and what most of them need.
class Entry {
  public:
    enum Rule {
        kNothingPending,  // a call with an exception pending, or not asked for, is a violation
        kMayBePending,
        kAsks  // asks for the exception or clears it
    };

    Entry(JNIEnv* env, const char* name, Rule rule = kNothingPending);

    // The thread may not make this call at all.
    bool Refused() const { return refused_; }
    bool Failed() const { return failure_.has_value(); }
    jint FailureCode() const { return failure_->code.value_or(JNI_ERR); }
    const char* Name() const { return name_; }

    void Violate(const std::string& text);
    void Raise(const std::string& className, const std::string& message) { core.Raise(thread, className, message); }
    void OutOfMemory() { Raise("java/lang/OutOfMemoryError", std::string(name_) + " was ordered to fail"); }
    // For a copy of a text or an array: a VM may well give null and no error.
    void NoMemoryForACopy() {
        if (!failure_->code) {
            OutOfMemory();
        }
    }
    // The next call must ask for an exception first.
    void MustBeAsked() { thread.unasked = name_; }

    jobject Local(const JavaRef& object) { return core.NewLocal(thread, object); }
    // Null for null; null with a violation for a wrong reference.
    JavaRef Object(jobject reference);
    // Null with a violation for null, for a wrong reference and for an object of another class.
    JavaRef Needed(jobject reference);
    JavaClass* Class(jclass reference);
    JavaRef Text(jstring reference);

    // Java code of a test runs without the lock of the VM.
    JavaValue Run(const JavaMethod& method, const JavaRef& self, std::vector<JavaValue> arguments);

    VmThread& thread;
    VmCore& core;

  private:
    bool refused_ = false;
    const char* name_;
    std::optional<OrderedFailure> failure_;
    std::unique_lock<std::recursive_mutex> lock_;
};

// The tables, a part of them in each file.
void FillMissing(JNINativeInterface_& table);
void FillClasses(JNINativeInterface_& table);
void FillCalls(JNINativeInterface_& table);
void FillFields(JNINativeInterface_& table);
void FillReferences(JNINativeInterface_& table);
void FillExceptions(JNINativeInterface_& table);
void FillTexts(JNINativeInterface_& table);
void FillArrays(JNINativeInterface_& table);
const JNINativeInterface_& NativeTable();
const JNIInvokeInterface_& InvokeTable();

}  // namespace quarlin::test
