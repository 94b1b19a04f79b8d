// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/library_thread_win.h"
#include "msr/msr_dev_base_win.h"
#include "msr/usb_hid_dev_win.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quarlin::msr {

// One MagTek MagneSafe V5 reader on USB HID. Track data come as the reader gives them; nothing is decrypted.
//
// Created -> Initialize -> initialised, closed -> Enable (true) -> reading on a thread of its own -> Enable (false) ->
// initialised, closed. When a read fails the thread ends by itself, and the reader is stuck until Enable (false).
//
// Owned by shared pointers: the thread owns the reader as well while it runs.
class CMSRDevMagtekMagneSafeV5 final : public CMSRDev,
                                       public IUsbHidDevListener,
                                       public std::enable_shared_from_this<CMSRDevMagtekMagneSafeV5> {
  public:
    // The path of the device's interface, in lower case.
    explicit CMSRDevMagtekMagneSafeV5(std::wstring devicePath) : devicePath_(std::move(devicePath)) {}
    CMSRDevMagtekMagneSafeV5(const CMSRDevMagtekMagneSafeV5&) = delete;
    CMSRDevMagtekMagneSafeV5& operator=(const CMSRDevMagtekMagneSafeV5&) = delete;
    ~CMSRDevMagtekMagneSafeV5() override;

    bool Initialize() override;
    bool Uninitialize() override;
    bool GetName(std::wstring& name) override;
    bool GetSerialNumber(std::wstring& serialNumber) override;
    bool GetSoftwareId(std::wstring& softwareId) override;
    bool GetVendor(MagStripeVendor& vendor) override;
    bool IsEncryptionEnabled() override;
    bool Enable(bool enable) override;
    bool IsSameDevice(const IMSRDev& other) const override;

  private:
    // One run of the reading thread, from an Enable (true) to the Enable (false) that ends it. A later run has its own,
    // so that a thread that outlives its run cannot take a new one for its own.
    struct Run {
        std::atomic<bool> stopping = false;
        // The thread has given up by itself and has nothing to do with the reader any more; guarded by the reader's
        // lock.
        bool over = false;
        // Whom the thread may be waiting for, guarded by the reader's lock.
        std::shared_ptr<IMSRDevListener> deliveringTo;
    };

    bool ReadIdentity();
    bool ReadSerialNumber();
    bool ReadSoftwareId();
    bool ReadSecurityMode();
    bool ReadSecurityLevel();
    bool ReadProperty(std::span<const std::uint8_t> request, std::wstring& text);
    bool AskReader(std::span<const std::uint8_t> request, std::vector<std::uint8_t>& reply);
    bool OpenHid();
    bool CloseHid();
    bool Start();
    void Stop();
    void ReadLoop(Run& run);

    void OnInputReport(const std::vector<std::uint8_t>& report) override;
    void AroundInputReport(const std::function<void()>& deliver) override;

    std::wstring devicePath_;
    std::wstring serialNumber_;
    std::wstring softwareId_;
    std::uint8_t securityLevel_ = 0;
    bool encryptionEnabled_ = false;
    bool initialized_ = false;
    CUsbHidDev hid_;
    LibraryThread thread_;
    std::shared_ptr<Run> run_;
};

}  // namespace quarlin::msr
