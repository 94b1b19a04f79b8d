// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/card_reader.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quarlin::msr {

// Who receives the swipes of readers. Always owned by a shared pointer: a reader's thread that is about to deliver
// keeps it alive.
class IMSRDevListener : public std::enable_shared_from_this<IMSRDevListener> {
  public:
    virtual ~IMSRDevListener() = default;

    // The record lives until the call returns. Called on the reader's thread.
    virtual void OnCardSwiped(const MagStripeData* record) = 0;

    // Calls `deliver` with every lock held that comes before the reader's. Waits for them as long as nobody sets
    // `stopping`; then returns without having called.
    virtual void AroundSwipe(const std::atomic<bool>& stopping, const std::function<void()>& deliver) = 0;
    // To be called after `stopping` has been set: ends the wait of AroundSwipe.
    virtual void EndWaits() = 0;
};

// One card reader. Results tell success; queries fail, and leave their output untouched, until the reader is
// initialised.
class IMSRDev {
  public:
    virtual ~IMSRDev() = default;

    // Opens the hardware, reads its identity and closes it again.
    virtual bool Initialize() = 0;
    virtual bool Uninitialize() = 0;
    virtual bool GetName(std::wstring& name) = 0;
    virtual bool GetSerialNumber(std::wstring& serialNumber) = 0;
    virtual bool GetSoftwareId(std::wstring& softwareId) = 0;
    virtual bool GetVendor(MagStripeVendor& vendor) = 0;
    // Whether the reader's security level makes it encrypt.
    virtual bool IsEncryptionEnabled() = 0;
    // Starts or ends the delivery of swipes.
    virtual bool Enable(bool enable) = 0;
    virtual bool IsEnabled() = 0;
    // Refuses null.
    virtual bool SetListener(IMSRDevListener* listener) = 0;
    virtual bool ClearListener() = 0;
    // Whether both are the same piece of hardware, as far as one can tell.
    virtual bool IsSameDevice(const IMSRDev& other) const = 0;
};

using MSRDevs = std::vector<std::shared_ptr<IMSRDev>>;

// Finds the readers of one kind.
class IMSRDevFactory {
  public:
    virtual ~IMSRDevFactory() = default;

    // Fills the list with a new object for each reader that is plugged in, none of them initialised.
    virtual bool CreateDevices(MSRDevs& readers) = 0;
};

}  // namespace quarlin::msr
