// SPDX-License-Identifier: Apache-2.0
#include "jni/card_delivery.h"

#include "jni/delivery_thread.h"
#include "jni/java_exceptions.h"
#include "jni/java_objects.h"
#include "jni/java_vm.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

namespace quarlin::jni {
namespace {

// One for the process: swipes come one at a time, on the card reader's thread.
constinit MagTekExtras swipeExtras{};
static_assert(sizeof swipeExtras == 887);

struct TrackClass {
    jclass type;
    jmethodID constructor;
};

template <typename Count, typename Element>
std::span<const Element> Elements(const Element* first, Count count) {
    if (first == nullptr || count <= 0) {
        return {};
    }
    return {first, static_cast<std::size_t>(count)};
}

template <typename... Arguments>
jobject CallForObject(JNIEnv* env, jobject object, const char* method, const char* signature, Arguments... arguments) {
    const Local<jclass> type(env, env->GetObjectClass(object));
    jobject result = env->CallObjectMethod(object, Made(env->GetMethodID(type.Get(), method, signature)), arguments...);
    if (env->ExceptionCheck() == JNI_TRUE) {
        throw JavaErrorPending{};
    }
    return Made(result);
}

// The class of that name where another class came from.
jclass LoadBeside(JNIEnv* env, jclass neighbour, const char* name) {
    std::string javaName(name);
    std::ranges::replace(javaName, '/', '.');
    const Local<jobject> loader(env, CallForObject(env, neighbour, "getClassLoader", "()Ljava/lang/ClassLoader;"));
    const Local<jstring> text(env, NewJavaString(env, javaName.c_str()));
    return static_cast<jclass>(
        CallForObject(env, loader.Get(), "loadClass", "(Ljava/lang/String;)Ljava/lang/Class;", text.Get()));
}

// The class as the callback's method knows it. On a thread without Java code FindClass asks the system's class loader
// alone, and an application may have its classes, and so these, from another one.
jclass FindDataClass(JNIEnv* env, jclass callback, const char* name) {
    try {
        return LoadBeside(env, callback, name);
    } catch (const JavaErrorPending&) {
        // A class of the VM's own has no loader that could be asked.
        env->ExceptionClear();
    }
    return FindClass(env, name);
}

jobject NewTrack(JNIEnv* env, const TrackClass& track, const MagStripeTrackData& data) {
    const auto buffer = Elements<std::int32_t, std::uint8_t>(data.data, data.bufferSize);
    const Local<jbyteArray> bytes(env, NewByteArray(env, buffer));
    return Made(env->NewObject(track.type, track.constructor, static_cast<jint>(data.bufferSize),
                               static_cast<jint>(data.length), bytes.Get()));
}

jobjectArray NewTracks(JNIEnv* env, const TrackClass& track, std::span<const MagStripeTrackData> tracks) {
    jobjectArray array = Made(env->NewObjectArray(static_cast<jsize>(tracks.size()), track.type, nullptr));
    for (std::size_t index = 0; index < tracks.size(); ++index) {
        StoreElement(env, array, index, NewTrack(env, track, tracks[index]));
    }
    return array;
}

jobject NewSwipe(JNIEnv* env, jclass callback, const MagStripeData& record) {
    TrackClass track{.type = FindDataClass(env, callback, "com/norvane/quarlin/msr/MagStripeTrackData"),
                     .constructor = nullptr};
    track.constructor = FindConstructor(env, track.type, "(II[B)V");
    jclass swipe = FindDataClass(env, callback, "com/norvane/quarlin/msr/MagStripeData");
    jmethodID constructor =
        FindConstructor(env, swipe,
                        "([Lcom/norvane/quarlin/msr/MagStripeTrackData;[Lcom/norvane/quarlin/msr/MagStripeTrackData;"
                        "[BZZ)V");

    jobjectArray tracks = NewTracks(env, track, Elements(record.tracks, record.trackCount));
    jobjectArray maskedTracks = NewTracks(env, track, Elements(record.maskedTracks, record.maskedTrackCount));
    jbyteArray raw = NewByteArray(env, Elements<std::uint64_t, std::uint8_t>(record.raw, record.rawLength));
    return Made(env->NewObject(swipe, constructor, tracks, maskedTracks, raw,
                               static_cast<jboolean>(record.isEncrypted ? JNI_TRUE : JNI_FALSE),
                               static_cast<jboolean>(record.isValid ? JNI_TRUE : JNI_FALSE)));
}

void CallWithSwipe(JNIEnv* env, const MagStripeData& record) {
    swipeExtras = {};
    ThrowJavaExceptionForResult(env, QLMSR_GetMagTekExtras(&record, &swipeExtras));
    // Nobody could catch that failure, and nothing may be built while it is pending.
    env->ExceptionClear();

    const CallbackClass callback = msrCallbackClass.Load();
    if (callback.method != nullptr) {
        env->CallStaticVoidMethod(callback.type, callback.method, NewSwipe(env, callback.type, record));
    }
}

}  // namespace

void DeliverCardSwipe(const MagStripeData* record) {
    JavaVM* const vm = msrVm;
    if (vm == nullptr) {
        return;
    }
    const DetachAtEnd detached(vm);
    void* env = nullptr;
    if (vm->GetEnv(&env, kJniVersion) != JNI_EDETACHED || vm->AttachCurrentThread(&env, nullptr) != JNI_OK) {
        return;
    }
    try {
        CallWithSwipe(static_cast<JNIEnv*>(env), *record);
    } catch (const JavaErrorPending&) {
        // The VM hands its error to the thread's handler of uncaught exceptions when the thread is detached.
    } catch (...) {
        // Nothing is told of it.
    }
}

void KeepCardReaderClasses(JNIEnv* env, jclass firstClass, jclass callbackClass) noexcept {
    if (!KeepVm(env, msrVm)) {
        return;
    }
    // Kept, not used: applications hand over a class that must not be unloaded.
    KeepClass(env, firstClass);
    const CallbackClass callback =
        KeepCallbackClass(env, callbackClass, "onMagStripeSwipe", "(Lcom/norvane/quarlin/msr/MagStripeData;)V");
    msrCallbackClass.Store(callback);
    if (callback.method == nullptr) {
        ShowMissingSwipeMethod();
    }
}

}  // namespace quarlin::jni
