// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/device_owners_win.h"
#include "core/smart_critical_win.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quarlin::msr {

// Who receives the input reports of a CUsbHidDev, on the thread that reads.
class IUsbHidDevListener {
  public:
    virtual ~IUsbHidDevListener() = default;

    // One whole report, beginning with the report ID. Called with the device's lock held.
    virtual void OnInputReport(const std::vector<std::uint8_t>& report) = 0;

    // Calls `deliver` with every lock held that is taken before the device's lock, or does not call it when the report
    // is not wanted any more. Without it a report on its way out and a call on its way in would take the same locks in
    // opposite orders.
    virtual void AroundInputReport(const std::function<void()>& deliver) = 0;
};

// One HID device: the list of device paths, feature reports, and one input report at a time. Failures are told by a
// false result alone.
class CUsbHidDev {
  public:
    CUsbHidDev() = default;
    CUsbHidDev(const CUsbHidDev&) = delete;
    CUsbHidDev& operator=(const CUsbHidDev&) = delete;
    // The owner closes first.
    virtual ~CUsbHidDev() = default;

    virtual bool UpdateDeviceList();
    virtual bool Uninitialize();
    // Refuses null.
    virtual bool SetListener(IUsbHidDevListener* listener);
    virtual bool ClearListener();
    virtual bool Open(const std::wstring& path);
    // Takes 200 ms when the device is open. Waits for a pending read to come back, and gives up its memory when it does
    // not.
    virtual bool Close();
    virtual bool IsOpen();
    // Appends the path of every HID interface that is present, in lower case.
    virtual bool EnumerateDevicePaths(std::vector<std::wstring>& paths);
    // Sends the bytes, filled up with zeros to the device's feature report length; refuses more bytes than that.
    virtual bool SetFeatureReport(const std::uint8_t* bytes, std::uint32_t length);
    virtual bool GetFeatureReport(std::vector<std::uint8_t>& report);
    // The length has to be the device's feature report length.
    virtual bool GetFeatureReportRaw(std::uint8_t* buffer, std::uint32_t length);
    virtual bool GetCaps(HIDP_CAPS* caps);
    virtual bool GetPreparsedData(PHIDP_PREPARSED_DATA* data);
    // Waits for one input report and hands it to the listener. True also when CancelRead has ended the wait; false when
    // the device is gone or closed.
    virtual bool ReadInputReport();
    // Ends the wait of ReadInputReport. The read itself stays pending, for the next call or for Close.
    virtual bool CancelRead();

  private:
    // A read that the system works on: it writes into both until the read's own packet has come back, whatever else
    // happens to the device, its handle or this object's owner.
    struct PendingRead {
        explicit PendingRead(std::size_t size) : report(size) {}

        OVERLAPPED overlapped{};
        std::vector<std::uint8_t> report;
    };

    // Null when the device refuses.
    PendingRead* StartedRead();
    // Null when the read is no longer this one.
    std::unique_ptr<PendingRead> TakeRead(const OVERLAPPED* overlapped);
    void AwaitPendingRead();
    void Deliver(const std::vector<std::uint8_t>& report);

    std::vector<std::wstring> paths_;
    IUsbHidDevListener* listener_ = nullptr;
    FileHandle file_;
    PreparsedData preparsedData_;
    HIDP_CAPS caps_{};
    KernelHandle port_{nullptr};
    std::unique_ptr<PendingRead> pendingRead_;
    // Around every operation but the wait. Without it, when the system had none left, operations run unlocked.
    CSmartCritical lock_;
};

}  // namespace quarlin::msr
