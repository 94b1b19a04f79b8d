// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/loaded_library.h"
#include "core/quarlin_exception.h"
#include "device/probe_functions.h"

#include <cstdint>

namespace quarlin::device {

// The family's process-wide state: the device-check library, and how often it was asked for. Not locked: initialising
// and uninitialising belong to one thread. Another family that wants to know about a device initialises, asks
// IsDeviceAvailable(deviceFamily.Probe(), ...), and uninitialises, as an application does.
class DeviceFamily {
  public:
    constexpr explicit DeviceFamily(LibrarySource& source) : source_(&source) {}
    DeviceFamily(const DeviceFamily&) = delete;
    DeviceFamily& operator=(const DeviceFamily&) = delete;
    ~DeviceFamily();

    void Initialize();
    void Uninitialize();

    // The functions of the device-check library; raises QLERR_INVALID_STATE when not initialised.
    const ProbeFunctions& Probe() const {
        Require(initialized_, QLERR_INVALID_STATE, "Device API has not been initialized.");
        return probe_;
    }

  private:
    LibrarySource* source_;
    LoadedLibrary library_;
    ProbeFunctions probe_;
    bool initialized_ = false;
    std::int32_t references_ = 0;
};

extern DeviceFamily deviceFamily;

}  // namespace quarlin::device
