// SPDX-License-Identifier: Apache-2.0
#include "gps/gps_impl_gen_win.h"

#include "core/quarlin_exception.h"
#include "gps/nmea_parser.h"

namespace quarlin::gps {

GpsImplGen::GpsImplGen() {
    Require(lock_.IsInitialized(), QLERR_INTERNAL_ERROR, "Could not initialize critical section.");
}

void GpsImplGen::Open() {
    if (opened_) {
        return;
    }
    port_.Open(portName_);
    Require(reader_.Start(&ReadLines, this), QLERR_INVALID_STATE, "CreateThread Failed");
    opened_ = true;
}

void GpsImplGen::Close() {
    if (!opened_) {
        return;
    }
    port_.Close();
    reader_.Join();
    opened_ = false;
    receiving_ = false;
}

void GpsImplGen::ReadLines(void* self) {
    constexpr DWORD kRetryPause = 10;  // milliseconds
    auto& gps = *static_cast<GpsImplGen*>(self);
    gps.lines_ = LineAssembler();
    for (;;) {
        unsigned char byte = 0;
        switch (gps.port_.ReadByte(byte)) {
            case SerialPort::ReadResult::kByte:
                if (gps.lines_.Take(byte)) {
                    gps.ParseLine(gps.lines_.Line());
                    gps.receiving_ = true;
                }
                break;
            case SerialPort::ReadResult::kNothing:
                Sleep(kRetryPause);
                break;
            case SerialPort::ReadResult::kClosed:
                return;
        }
    }
}

void GpsImplGen::ParseLine(const char* line) {
    const CSmartCriticalWrapper held(lock_);
    ParseSentence(fix_, line);
}

template <typename Read>
auto GpsImplGen::Locked(Read read) const {
    const CSmartCriticalWrapper held(lock_);
    return read(fix_);
}

std::string GpsImplGen::GetTimeStamp() const {
    return Locked([](const FixState& fix) { return fix.TimeStamp(); });
}

std::int32_t GpsImplGen::GetSatellitesUsedForFix() const {
    return Locked([](const FixState& fix) { return fix.used.Count(); });
}

std::int32_t GpsImplGen::GetMaxSat() const {
    return Locked([](const FixState& fix) { return fix.inViewTotal; });
}

GpsProtType GpsImplGen::GetProtocol() {
    protocol_ = GPS_PROTOCOL_NMEA;
    return GPS_PROTOCOL_NMEA;
}

FixMode GpsImplGen::GetFixMode() const {
    return Locked([](const FixState& fix) { return static_cast<FixMode>(fix.fixType); });
}

FixSelection GpsImplGen::GetFixSelection() const {
    return Locked([](const FixState& fix) { return static_cast<FixSelection>(fix.fixSelection); });
}

void GpsImplGen::GetSatellites(GpsGlonassSatellite* records, std::int32_t capacity) const {
    Locked([&](const FixState& fix) { fix.CopySatellites(records, capacity); });
}

std::int32_t GpsImplGen::GetFixQuality() const {
    return Locked([](const FixState& fix) { return fix.MappedFixQuality(); });
}

double GpsImplGen::GetHDOP() const {
    return Locked([](const FixState& fix) { return fix.hdop; });
}

double GpsImplGen::GetVDOP() const {
    return Locked([](const FixState& fix) { return fix.vdop; });
}

double GpsImplGen::GetPDOP() const {
    return Locked([](const FixState& fix) { return fix.pdop; });
}

double GpsImplGen::GetSpeed() const {
    return Locked([](const FixState& fix) { return fix.speed; });
}

double GpsImplGen::GetBearing() const {
    return Locked([](const FixState& fix) { return fix.bearing; });
}

void GpsImplGen::GetCoordinates(double* latitude, double* longitude, double* altitude) const {
    Require(latitude != nullptr && longitude != nullptr && altitude != nullptr, QLERR_INVALID_ARGUMENT,
            "Buffer pointer is NULL");
    Locked([&](const FixState& fix) {
        *latitude = fix.latitude;
        *longitude = fix.longitude;
        *altitude = fix.altitude;
    });
}

}  // namespace quarlin::gps
