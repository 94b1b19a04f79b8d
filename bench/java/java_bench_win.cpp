// SPDX-License-Identifier: Apache-2.0
// The native half of JavaBench: an empty native method, and scans that go into Java from a native thread beside calls
// that bring nothing along. It has a copy of the library's delivery, so that no scanner lies in between.
#include <windows.h>

#include "jni/barcode_delivery.h"
#include "measure.h"

#include <jni.h>

#include <array>
#include <cstdint>
#include <vector>

#include "com_norvane_quarlin_bcr_CoreNatives.h"

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

JavaVM* javaVm = nullptr;
jclass bareClass = nullptr;
jmethodID bareMethod = nullptr;

// A scan of usual length.
std::array<std::uint8_t, 20> data{'0', '1', '0', '4', '0', '0', '0', '3', '2', '1',
                                  '5', '6', '7', '8', '9', '2', '1', 'A', 'B', 'C'};
std::array<std::uint8_t, 3> symbology{']', 'C', '1'};

QLBCR_BARCODE_DATA UsualScan() {
    QLBCR_BARCODE_DATA scan{};
    scan.deviceIndex = 1;
    scan.dataLength = static_cast<std::int32_t>(data.size());
    scan.data = data.data();
    scan.symbologyIdLength = static_cast<std::int32_t>(symbology.size());
    scan.symbologyId = symbology.data();
    return scan;
}

double DeliverScans(int count) {
    const QLBCR_BARCODE_DATA scan = UsualScan();
    return bench::SecondsOf([&] {
        for (int i = 0; i < count; ++i) {
            jni::DeliverBarcodeEvent(&scan);
        }
    });
}

double AttachCallDetach(int count) {
    return bench::SecondsOf([&] {
        for (int i = 0; i < count; ++i) {
            void* env = nullptr;
            if (javaVm->AttachCurrentThread(&env, nullptr) == JNI_OK) {
                static_cast<JNIEnv*>(env)->CallStaticVoidMethod(bareClass, bareMethod);
                javaVm->DetachCurrentThread();
            }
        }
    });
}

struct Rounds {
    int callsPerRound;
    std::vector<double> bare;
    std::vector<double> scan;
};

DWORD WINAPI MeasureDeliveries(void* given) {
    auto& rounds = *static_cast<Rounds*>(given);
    for (std::size_t i = 0; i < rounds.bare.size(); ++i) {
        rounds.bare[i] = AttachCallDetach(rounds.callsPerRound);
        rounds.scan[i] = DeliverScans(rounds.callsPerRound);
    }
    return 0;
}

}  // namespace

extern "C" {

__declspec(dllexport) jboolean Java_JavaBench_empty(JNIEnv* /*env*/, jclass /*self*/) {
    return 0;
}

// The callback class is the library's and the bench's; `bare` is a static method of it without arguments.
__declspec(dllexport) jboolean Java_JavaBench_register(JNIEnv* env, jclass self, jclass exceptionClass) {
    bareClass = static_cast<jclass>(env->NewGlobalRef(self));
    bareMethod = env->GetStaticMethodID(self, "bare", "()V");
    if (env->GetJavaVM(&javaVm) != JNI_OK || bareMethod == nullptr) {
        return JNI_FALSE;
    }
    return Java_com_norvane_quarlin_bcr_CoreNatives_nInit(env, self, exceptionClass, self);
}

// Fills both arrays, which are as long as each other, with the seconds of rounds that take turns on one native thread.
__declspec(dllexport) void Java_JavaBench_deliver(JNIEnv* env, jclass /*self*/, jint callsPerRound, jdoubleArray bare,
                                                  jdoubleArray scan) {
    const jsize count = env->GetArrayLength(bare);
    const auto size = static_cast<std::size_t>(count);
    Rounds rounds{.callsPerRound = callsPerRound, .bare = std::vector<double>(size), .scan = std::vector<double>(size)};
    HANDLE const thread = CreateThread(nullptr, 0, MeasureDeliveries, &rounds, 0, nullptr);
    if (thread != nullptr) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
    env->SetDoubleArrayRegion(bare, 0, count, rounds.bare.data());
    env->SetDoubleArrayRegion(scan, 0, count, rounds.scan.data());
}

}  // extern "C"
