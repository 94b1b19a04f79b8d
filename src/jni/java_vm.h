// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <jni.h>

#include <atomic>
#include <type_traits>

namespace quarlin::jni {

inline constexpr jint kJniVersion = JNI_VERSION_1_6;

// A small record that one thread replaces as a whole and others read as a whole. Plain memory: nothing to construct
// when the library is loaded, nothing to destroy when it goes.
template <typename Value>
class Published {
    static_assert(std::is_trivially_copyable_v<Value>);

  public:
    void Store(Value value) noexcept {
        Lock();
        value_ = value;
        busy_.clear(std::memory_order_release);
    }

    [[nodiscard]] Value Load() noexcept {
        Lock();
        const Value value = value_;
        busy_.clear(std::memory_order_release);
        return value;
    }

  private:
    void Lock() noexcept {
        while (busy_.test_and_set(std::memory_order_acquire)) {
        }
    }

    std::atomic_flag busy_;
    Value value_{};
};

// A class and the static method of it that deliveries call. The method is null when the class has none such.
struct CallbackClass {
    jclass type = nullptr;
    jmethodID method = nullptr;
};

// What the initialisation of each group leaves for the rest of the process. A second one takes the first one's place;
// global references are never released, because a delivery may be under way with them.
extern std::atomic<JavaVM*> bcrVm;
extern std::atomic<jclass> bcrExceptionClass;
extern Published<CallbackClass> bcrCallbackClass;

extern std::atomic<JavaVM*> msrVm;
extern Published<CallbackClass> msrCallbackClass;

extern std::atomic<JavaVM*> rfidVm;
extern std::atomic<jclass> rfidExceptionClass;

// Writes to the process's standard output at once, as it stands.
void Diagnose(const char* text) noexcept;

// Asks for the VM and keeps it. False, and nothing is kept, when there is none.
bool KeepVm(JNIEnv* env, std::atomic<JavaVM*>& vm) noexcept;

// A global reference, null for null.
jclass KeepClass(JNIEnv* env, jclass local) noexcept;

// The class, kept, with its static method. No Java error is left when there is none.
CallbackClass KeepCallbackClass(JNIEnv* env, jclass local, const char* method, const char* signature) noexcept;

}  // namespace quarlin::jni
