// SPDX-License-Identifier: Apache-2.0
// The native methods of com.norvane.quarlin.gps.GPS.
#include "jni/java_objects.h"
#include "jni/wrapper.h"

#include <quarlin/gps.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "com_norvane_quarlin_gps_GPS.h"

using namespace quarlin::jni;

namespace {

constexpr std::size_t kTimeStampSize = 80;
// Room for all that the library can tell of.
constexpr std::size_t kMostSatellites = 150;

template <typename Java, typename Native>
Java Query(JNIEnv* env, QLerr (*function)(Native*)) noexcept {
    return quarlin::jni::Query<ResultGroup, Java, Native>(env, function);
}

jobject NewSatellite(JNIEnv* env, jclass type, jmethodID constructor, const GpsGlonassSatellite& record) {
    jobject satellite = Made(env->NewObject(type, constructor));
    Fields fields(env, satellite);
    fields.SetInt("PRN", record.PRN);
    fields.SetInt("Elevation", record.Elevation);
    fields.SetInt("Azimuth", record.Azimuth);
    fields.SetInt("SNR", record.SNR);
    fields.SetInt("used", record.used);
    return satellite;
}

// As many objects as were asked for: those beyond the records are zero.
jobjectArray NewSatellites(JNIEnv* env, std::span<const GpsGlonassSatellite> records, std::size_t count) {
    const Local<jclass> type(env, FindClass(env, "com/norvane/quarlin/gps/GpsGlonassSatellite"));
    jmethodID constructor = FindConstructor(env, type.Get());
    jobjectArray array = Made(env->NewObjectArray(static_cast<jsize>(count), type.Get(), nullptr));
    for (std::size_t index = 0; index < count; ++index) {
        const GpsGlonassSatellite record = index < records.size() ? records[index] : GpsGlonassSatellite{};
        StoreElement(env, array, index, NewSatellite(env, type.Get(), constructor, record));
    }
    return array;
}

}  // namespace

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1Initialize(JNIEnv* env, jclass /*self*/, jint port) {
    return Perform<ResultGroup>(env, [&] { return QLGPS_Initialize(port); });
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1Uninitialize(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLGPS_Uninitialize);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1Enable(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLGPS_Enable);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1Disable(JNIEnv* env, jclass /*self*/) {
    return Perform<ResultGroup>(env, QLGPS_Disable);
}

jboolean Java_com_norvane_quarlin_gps_GPS_QLGPS_1IsEnabled(JNIEnv* env, jclass /*self*/) {
    return Query<jboolean>(env, QLGPS_IsEnabled);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetFixQuality(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLGPS_GetFixQuality);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetFixStatus(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLGPS_GetFixStatus);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetMaxSat(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLGPS_GetMaxSat);
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSatellitesUsedForFix(JNIEnv* env, jclass /*self*/) {
    return Query<jint>(env, QLGPS_GetSatellitesUsedForFix);
}

jdouble Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetBearing(JNIEnv* env, jclass /*self*/) {
    return Query<jdouble>(env, QLGPS_GetBearing);
}

jdouble Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSpeed(JNIEnv* env, jclass /*self*/) {
    return Query<jdouble>(env, QLGPS_GetSpeed);
}

jdouble Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetHDOP(JNIEnv* env, jclass /*self*/) {
    return Query<jdouble>(env, QLGPS_GetHDOP);
}

jdouble Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetPDOP(JNIEnv* env, jclass /*self*/) {
    return Query<jdouble>(env, QLGPS_GetPDOP);
}

jdouble Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetVDOP(JNIEnv* env, jclass /*self*/) {
    return Query<jdouble>(env, QLGPS_GetVDOP);
}

jstring Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetTimeStamp(JNIEnv* env, jclass /*self*/) {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jstring {
        std::array<char, kTimeStampSize> text{};
        return Succeeded<ResultGroup>(env, QLGPS_GetTimeStamp(text.data())) ? NewJavaString(env, text.data()) : nullptr;
    });
}

jint Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetCoordinates(JNIEnv* env, jclass /*self*/, jobject coordinates) {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jint {
        RequireObject(env, coordinates, "coordinates cannot be NULL");
        double latitude = 0;
        double longitude = 0;
        double altitude = 0;
        const QLerr result = QLGPS_GetCoordinates(&latitude, &longitude, &altitude);
        if (Succeeded<ResultGroup>(env, result)) {
            Fields fields(env, coordinates);
            fields.SetDouble("d_fld_1", latitude);
            fields.SetDouble("d_fld_2", longitude);
            fields.SetDouble("d_fld_3", altitude);
        }
        return result;
    });
}

jobjectArray Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSatellites(JNIEnv* env, jclass /*self*/, jint count) {
    return Contain<ResultGroup>(env, kUnknownFailure, [&]() -> jobjectArray {
        const auto wanted = static_cast<std::size_t>(std::max(count, 0));
        std::array<GpsGlonassSatellite, kMostSatellites> records{};
        const int capacity = static_cast<int>(std::min(wanted, records.size()));
        if (!Succeeded<ResultGroup>(env, QLGPS_GetSatellites(records.data(), capacity))) {
            return nullptr;
        }
        return NewSatellites(env, records, wanted);
    });
}
