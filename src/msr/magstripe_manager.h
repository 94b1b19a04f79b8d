// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/card_reader.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quarlin {
class InterruptibleLock;
}  // namespace quarlin

namespace quarlin::msr {

// The readers that the library knows, under indexes that stay, and the functions that receive their swipes. Results
// tell success.
class IQlMagStripeMgr {
  public:
    virtual ~IQlMagStripeMgr() = default;

    virtual bool IsValid() = 0;
    virtual bool Uninitialize() = 0;
    // Looks for readers again. A reader that is still there keeps its index and stays enabled; a new one gets the
    // lowest free index; one that is gone is forgotten. After a failure no reader is known.
    virtual bool ScanDevices() = 0;
    virtual void ClearDevices() = 0;
    virtual std::uint64_t GetDeviceCount() = 0;
    // In the order of the indexes. A reader that cannot be described ends the list. Throws std::bad_alloc.
    virtual bool GetDevices(std::vector<MagStripeReaderInfo>& readers) = 0;
    virtual bool EnableDevice(std::int32_t index, bool enable) = 0;
    virtual bool IsDeviceEnabled(std::int32_t index, bool& enabled) = 0;
    virtual bool AddCallback(QLMSR_Callback callback, std::uint32_t& id) = 0;
    virtual bool RemoveCallback(std::int32_t id) = 0;
    virtual bool ClearCallbacks() = 0;
    virtual bool GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras) = 0;
    // Gives the manager up: it is deleted now, or when the swipe that a reader's thread is delivering is done.
    virtual void Destroy() = 0;
    // Those of the indexes that are known, in the order given; ends at the first failure.
    virtual bool SetDevicesEnabled(const std::vector<std::int32_t>& indexes, bool enable) = 0;
    virtual void DispatchSwipe(const MagStripeData* record) = 0;
};

// Owned by itself, until Destroy. Null when memory is short. The lock is the one that its callers hold; swipes take it
// as well.
IQlMagStripeMgr* CreateQlMagStripeMgr(InterruptibleLock& callersLock);

}  // namespace quarlin::msr
