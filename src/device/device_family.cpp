// SPDX-License-Identifier: Apache-2.0
#include "device/device_family.h"

#include "device/probe_status.h"

#include <string>

namespace quarlin::device {

DeviceFamily::~DeviceFamily() {
    // An application that did not tidy up leaves the device-check library loaded: this runs inside the system's loader,
    // which lets nobody free another library.
    library_.KeepLoaded();
}

void DeviceFamily::Initialize() {
    if (library_.IsLoaded() && initialized_ && references_ > 0) {
        ++references_;
        return;
    }
    // A library that an earlier try loaded and could not use stays: what it began before it failed may still be at
    // work.
    library_.KeepLoaded();
    library_ = LoadedLibrary(*source_, L"HwProbeLib.dll");
    Require(library_.IsLoaded(), QLERR_INTERNAL_ERROR, "Failed LoadLibrary(HwProbeLib)");
    probe_.ForEach([&](const char* name, auto& function) {
        if (!library_.Find(name, function)) {
            throw QuarlinException(QLERR_INTERNAL_ERROR, "Failed GetProcAddress(" + std::string(name) + ")");
        }
    });
    RequireProbeSuccess(probe_.initialize());
    initialized_ = true;
    ++references_;
}

void DeviceFamily::Uninitialize() {
    const ProbeFunctions& probe = Probe();
    if (--references_ > 0) {
        return;
    }
    const std::int32_t status = probe.uninitialize();
    library_.Free();
    probe_ = {};
    initialized_ = false;
    references_ = 0;
    // Everything is undone, also when the device-check library has something to complain about.
    RequireProbeSuccess(status);
}

}  // namespace quarlin::device
