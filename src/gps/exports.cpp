// SPDX-License-Identifier: Apache-2.0
#include "core/export_frame.h"
#include "core/management_model.h"
#include "core/text.h"
#include "gps/gps_family.h"
#include "gps/receiver_model.h"

#include <quarlin/gps.h>

#include <cstring>
#include <string>

using namespace quarlin;
using namespace quarlin::gps;

namespace {

// Every null pointer is reported in the words that its function has always used.
constexpr const char* kPointerNull = "Pointer is NULL.";
constexpr const char* kLowerPointerNull = "pointer is NULL";
constexpr const char* kPointerArgNull = "pointer arg cannot be NULL";
constexpr const char* kUpperPointerArgNull = "Pointer arg cannot be NULL";
constexpr const char* kBufferPointerNull = "Buffer pointer is NULL";
constexpr const char* kModuleNameNull = "module_name arg cannot be NULL";
constexpr const char* kBufferSizeTooSmall = "buf size is too small";

// A buffer for the name of a receiver or of its firmware has at least this many bytes.
constexpr int kNameSize = 20;

void RequirePointer(const void* pointer, const char* message) {
    Require(pointer != nullptr, QLERR_INVALID_ARGUMENT, message);
}

// The receiver exists, then the pointer is there.
template <typename Value>
QLerr Get(Value* out, Value (GpsImpl::*getter)() const, const char* nullMessage) {
    return Export([&] {
        const GpsImpl& gps = gpsFamily.Gps();
        RequirePointer(out, nullMessage);
        *out = (gps.*getter)();
    });
}

// The pointer is there, then the receiver exists.
template <typename Value, typename Getter>
QLerr GetPointerFirst(Value* out, Getter getter) {
    return Export([&] {
        RequirePointer(out, kUpperPointerArgNull);
        *out = (gpsFamily.Gps().*getter)();
    });
}

}  // namespace

QLerr QLGPS_Initialize(int portNumber) {
    return Export([&] { gpsFamily.Initialize(portNumber); });
}

QLerr QLGPS_Uninitialize() {
    return Export([] { gpsFamily.Uninitialize(); });
}

QLerr QLGPS_Enable() {
    return Export([] { gpsFamily.Gps().Open(); });
}

QLerr QLGPS_Disable() {
    return Export([] { gpsFamily.Gps().Close(); });
}

QLerr QLGPS_IsEnabled(bool* enabled) {
    return Get(enabled, &GpsImpl::IsReceiving, kPointerNull);
}

QLerr QLGPS_GetBearing(double* bearing) {
    return Get(bearing, &GpsImpl::GetBearing, kPointerArgNull);
}

QLerr QLGPS_GetCoordinates(double* latitude, double* longitude, double* altitude) {
    return Export([&] {
        const GpsImpl& gps = gpsFamily.Gps();
        RequirePointer(latitude, kPointerNull);
        RequirePointer(longitude, kPointerNull);
        RequirePointer(altitude, kPointerNull);
        gps.GetCoordinates(latitude, longitude, altitude);
    });
}

QLerr QLGPS_GetFixQuality(int* quality) {
    return Export([&] {
        const GpsImpl& gps = gpsFamily.Gps();
        RequirePointer(quality, kLowerPointerNull);
        gpsFamily.RequireInitialized();
        *quality = gps.GetFixQuality();
    });
}

QLerr QLGPS_GetFixStatus(int* status) {
    return Export([&] {
        const GpsImpl& gps = gpsFamily.Gps();
        RequirePointer(status, kBufferPointerNull);
        gpsFamily.RequireInitialized();
        const FixMode mode = gps.GetFixMode();
        *status = mode == FIX_MODE_2D || mode == FIX_MODE_3D ? 1 : 0;
    });
}

QLerr QLGPS_GetHDOP(double* hdop) {
    return Get(hdop, &GpsImpl::GetHDOP, kPointerArgNull);
}

QLerr QLGPS_GetMaxSat(int* count) {
    return Get(count, &GpsImpl::GetMaxSat, kPointerArgNull);
}

QLerr QLGPS_GetPDOP(double* pdop) {
    return Get(pdop, &GpsImpl::GetPDOP, kPointerArgNull);
}

QLerr QLGPS_GetSatellites(GpsGlonassSatellite* records, int capacity) {
    return Export([&] { gpsFamily.Gps().GetSatellites(records, capacity); });
}

QLerr QLGPS_GetSatellitesUsedForFix(int* count) {
    return Get(count, &GpsImpl::GetSatellitesUsedForFix, kPointerArgNull);
}

QLerr QLGPS_GetSpeed(double* speed) {
    return Get(speed, &GpsImpl::GetSpeed, kPointerArgNull);
}

QLerr QLGPS_GetTimeStamp(char* text) {
    return Export([&] {
        const GpsImpl& gps = gpsFamily.Gps();
        RequirePointer(text, kPointerArgNull);
        const std::string timeStamp = gps.GetTimeStamp();
        std::memcpy(text, timeStamp.c_str(), timeStamp.size() + 1);
    });
}

QLerr QLGPS_GetVDOP(double* vdop) {
    return Get(vdop, &GpsImpl::GetVDOP, kPointerArgNull);
}

QLerr GPS_VerifyAvailable() {
    return Export([] { Require(gpsFamily.ReceiverCount() != 0, QLERR_OP_UNSUPPORTED, "Device Not available"); });
}

// NOLINTNEXTLINE(readability-non-const-parameter): the interface's signature, with room for a version to come
QLerr QLGPS_GetDeviceFirmwareVersion(char* buffer, int size) {
    return Export([&] {
        Require(buffer != nullptr, QLERR_BUFFER_OVERFLOW, kModuleNameNull);
        Require(size >= kNameSize, QLERR_BUFFER_OVERFLOW, kBufferSizeTooSmall);
        throw QuarlinException(QLERR_OP_UNSUPPORTED, "This GPS device doesn't have firmware version");
    });
}

QLerr QLGPS_GetDeviceName(char* buffer, int size) {
    return Export([&] {
        Require(size >= kNameSize, QLERR_BUFFER_OVERFLOW, kBufferSizeTooSmall);
        const char* const receiver = ReceiverName(ManagementModel());
        Require(buffer != nullptr, QLERR_BUFFER_OVERFLOW, kModuleNameNull);
        BoundedCopyNarrow(buffer, size, receiver != nullptr ? receiver : "NOT_SUPPORTED");
        Require(receiver != nullptr, QLERR_OP_UNSUPPORTED, "UNKNOWN DEVICE");
    });
}

QLerr QLGPS_GetFixMode(FixMode* mode) {
    return GetPointerFirst(mode, &GpsImpl::GetFixMode);
}

QLerr QLGPS_GetFixSelection(FixSelection* selection) {
    return GetPointerFirst(selection, &GpsImpl::GetFixSelection);
}

QLerr QLGPS_GetGpsDevices(int* count) {
    return Export([&] {
        Require(count != nullptr, QLERR_BUFFER_OVERFLOW, "buffer pointer is NULL");
        *count = gpsFamily.ReceiverCount();
    });
}

QLerr QLGPS_GetProtocol(GpsProtType* protocol) {
    return GetPointerFirst(protocol, &GpsImpl::GetProtocol);
}
