// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/gps.h>

#include <cstdint>
#include <string>

namespace quarlin::gps {

// A GPS receiver. Failures are raised as QuarlinException. The order of the operations is part of the interface.
class GpsImpl {
  public:
    virtual bool IsReceiving() const = 0;
    virtual void Open() = 0;
    virtual void Close() = 0;
    // The text stays the caller's and must outlive its use.
    virtual void SetPortName(const char* name) = 0;
    virtual std::string GetTimeStamp() const = 0;
    virtual std::int32_t GetSatellitesUsedForFix() const = 0;
    virtual std::int32_t GetMaxSat() const = 0;
    virtual GpsProtType GetProtocol() = 0;
    virtual FixMode GetFixMode() const = 0;
    virtual FixSelection GetFixSelection() const = 0;
    virtual void GetSatellites(GpsGlonassSatellite* records, std::int32_t capacity) const = 0;
    virtual std::int32_t GetFixQuality() const = 0;
    virtual double GetHDOP() const = 0;
    virtual double GetVDOP() const = 0;
    virtual double GetPDOP() const = 0;
    virtual double GetSpeed() const = 0;
    virtual double GetBearing() const = 0;
    virtual void GetCoordinates(double* latitude, double* longitude, double* altitude) const = 0;

    virtual ~GpsImpl() = default;
};

}  // namespace quarlin::gps
