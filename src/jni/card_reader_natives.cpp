// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.msr.MagStripeReader.
#include "jni/card_delivery.h"
#include "jni/java_objects.h"
#include "jni/wrapper.h"

#include <quarlin/card_reader.h>
#include <quarlin/strings.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <span>
#include <vector>

#include "com_norvane_quarlin_msr_MagStripeReader.h"

using namespace quarlin::jni;

namespace {

// Of the callback that delivers into Java: one for the process.
constinit std::atomic<unsigned int> swipeCallbackId{0};

// Two functions, one after the other whatever becomes of the first. A failure of the second is the one that Java gets.
template <typename First, typename Second>
jint PerformBoth(JNIEnv* env, First&& first, Second&& second) noexcept {
    const jint firstResult = Perform<ResultGroup>(env, std::forward<First>(first));
    const jint secondResult = Perform<ResultGroup>(env, std::forward<Second>(second));
    return secondResult == QLERR_OK ? firstResult : secondResult;
}

// The list, however many readers there are.
QLerr ListReaders(std::vector<MagStripeReaderInfo>& readers) {
    readers.resize(16);
    while (true) {
        int count = static_cast<int>(readers.size());
        const QLerr result = QLMSR_GetMagStripeDevices(readers.data(), &count);
        const auto found = static_cast<std::size_t>(std::max(count, 0));
        if (result == QLERR_INVALID_ARGUMENT && found > readers.size()) {
            readers.resize(found);
            continue;
        }
        if (result == QLERR_OK) {
            readers.resize(std::min(found, readers.size()));
        }
        return result;
    }
}

// A text that does not fit, or is none, is empty.
jstring NewName(JNIEnv* env, const wchar_t* wide) {
    std::array<char, 150> narrow{};
    int count = 0;
    if (QLSTR_WideToNarrow(narrow.data(), static_cast<int>(narrow.size()), &count, wide) != QLERR_OK) {
        narrow.fill('\0');
    }
    return NewJavaString(env, narrow.data());
}

jobjectArray NewReaders(JNIEnv* env, std::span<const MagStripeReaderInfo> readers) {
    constexpr const char* kVendorClass = "com/norvane/quarlin/msr/MagStripeReader$MagStripeVendor";
    constexpr const char* kVendorType = "Lcom/norvane/quarlin/msr/MagStripeReader$MagStripeVendor;";
    constexpr const char* kConstructor =
        "(ILjava/lang/String;Ljava/lang/String;Ljava/lang/String;Z"
        "Lcom/norvane/quarlin/msr/MagStripeReader$MagStripeVendor;)V";

    const Local<jclass> type(env, FindClass(env, "com/norvane/quarlin/msr/MagStripeReader"));
    jmethodID constructor = FindConstructor(env, type.Get(), kConstructor);
    const Local<jclass> vendorClass(env, FindClass(env, kVendorClass));
    jfieldID magTek = Made(env->GetStaticFieldID(vendorClass.Get(), "MagTek", kVendorType));
    const Local<jobject> vendor(env, env->GetStaticObjectField(vendorClass.Get(), magTek));

    jobjectArray array = Made(env->NewObjectArray(static_cast<jsize>(readers.size()), type.Get(), nullptr));
    for (std::size_t index = 0; index < readers.size(); ++index) {
        const MagStripeReaderInfo& reader = readers[index];
        const Local<jstring> name(env, NewName(env, reader.name));
        const Local<jstring> serialNumber(env, NewName(env, reader.serialNumber));
        const Local<jstring> softwareId(env, NewName(env, reader.softwareId));
        StoreElement(env, array, index,
                     Made(env->NewObject(type.Get(), constructor, static_cast<jint>(reader.index), name.Get(),
                                         serialNumber.Get(), softwareId.Get(),
                                         ToJava<jboolean>(reader.encryptionEnabled), vendor.Get())));
    }
    return array;
}

}  // namespace

jint Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Initialize(JNIEnv* env, jclass /*self*/, jclass firstClass,
                                                                    jclass callbackClass) {
    KeepCardReaderClasses(env, firstClass, callbackClass);
    return Perform<ResultGroup>(env, QLMSR_Initialize);
}

jint Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Uninitialize(JNIEnv* env, jclass /*self*/) {
    return PerformBoth(env, QLMSR_ClearCallbacks, QLMSR_Uninitialize);
}

jint Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Enable(JNIEnv* env, jclass /*self*/) {
    return PerformBoth(env, QLMSR_Enable, [] {
        unsigned int id = 0;
        const QLerr result = QLMSR_AddCallback(DeliverCardSwipe, &id);
        if (result == QLERR_OK) {
            swipeCallbackId = id;
        }
        return result;
    });
}

jint Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1Disable(JNIEnv* env, jclass /*self*/) {
    return PerformBoth(env, QLMSR_Disable, [] { return QLMSR_RemoveCallback(swipeCallbackId); });
}

jboolean Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1IsEnabled(JNIEnv* env, jclass /*self*/) {
    return Query<ResultGroup, jboolean, bool>(env, QLMSR_IsEnabled);
}

jint Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1SelectDevice(JNIEnv* env, jclass /*self*/, jint index) {
    return Perform<ResultGroup>(env, [&] { return QLMSR_SelectDevice(index); });
}

jobjectArray Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1GetMagStripeReaders(JNIEnv* env, jclass /*self*/) {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jobjectArray {
        std::vector<MagStripeReaderInfo> readers;
        return Succeeded<ResultGroup>(env, ListReaders(readers)) ? NewReaders(env, readers) : nullptr;
    });
}
