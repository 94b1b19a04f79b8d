// SPDX-License-Identifier: Apache-2.0
#include "jni/card_delivery.h"

#include "jni/delivery_thread.h"
#include "jni/java_exceptions.h"
#include "jni/java_objects.h"
#include "jni/java_vm.h"

#include <algorithm>
#include <cstdint>
#include <span>

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

jobject NewSwipe(JNIEnv* env, const MagStripeData& record) {
    TrackClass track{.type = FindClass(env, "com/norvane/quarlin/msr/MagStripeTrackData"), .constructor = nullptr};
    track.constructor = FindConstructor(env, track.type, "(II[B)V");
    jclass swipe = FindClass(env, "com/norvane/quarlin/msr/MagStripeData");
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
        env->CallStaticVoidMethod(callback.type, callback.method, NewSwipe(env, record));
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
