// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/smart_critical_win.h"
#include "gps/fix_state.h"
#include "gps/gps_impl.h"
#include "gps/line_assembler.h"
#include "gps/reader_thread_win.h"
#include "gps/serial_port_win.h"

#include <atomic>

namespace quarlin::gps {

// An NMEA receiver on a serial port, read on a thread of its own. Open and Close belong to one thread at a time; the
// getters may run on any thread.
class GpsImplGen final : public GpsImpl {
  public:
    GpsImplGen();

    bool IsReceiving() const override { return receiving_; }
    void Open() override;
    void Close() override;
    void SetPortName(const char* name) override { portName_ = name; }
    std::string GetTimeStamp() const override;
    std::int32_t GetSatellitesUsedForFix() const override;
    std::int32_t GetMaxSat() const override;
    GpsProtType GetProtocol() override;
    FixMode GetFixMode() const override;
    FixSelection GetFixSelection() const override;
    void GetSatellites(GpsGlonassSatellite* records, std::int32_t capacity) const override;
    std::int32_t GetFixQuality() const override;
    double GetHDOP() const override;
    double GetVDOP() const override;
    double GetPDOP() const override;
    double GetSpeed() const override;
    double GetBearing() const override;
    void GetCoordinates(double* latitude, double* longitude, double* altitude) const override;

  private:
    template <typename Read>
    auto Locked(Read read) const;

    // The reader's procedure. Reports nothing: what cannot be read is tried again, and bad lines are dropped.
    static void ReadLines(void* self);
    void ParseLine(const char* line);

    // Guards fix_. Not held while Close waits for the reader.
    mutable CSmartCritical lock_;
    FixState fix_;
    std::atomic<bool> receiving_{false};
    bool opened_ = false;
    std::atomic<GpsProtType> protocol_{};
    const char* portName_ = nullptr;
    SerialPort port_;
    ReaderThread reader_;
    LineAssembler lines_;
};

}  // namespace quarlin::gps
