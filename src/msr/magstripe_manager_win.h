// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/interruptible_lock_win.h"
#include "core/smart_critical_win.h"
#include "msr/callback_list.h"
#include "msr/magstripe_manager.h"
#include "msr/msr_dev.h"

#include <map>
#include <memory>

namespace quarlin::msr {

class CQlMagStripeMgr final : public IQlMagStripeMgr, public IMSRDevListener {
  public:
    static std::shared_ptr<CQlMagStripeMgr> Create(InterruptibleLock& callersLock);

    explicit CQlMagStripeMgr(InterruptibleLock& callersLock) : callersLock_(callersLock) {}
    CQlMagStripeMgr(const CQlMagStripeMgr&) = delete;
    CQlMagStripeMgr& operator=(const CQlMagStripeMgr&) = delete;
    ~CQlMagStripeMgr() override;

    bool IsValid() override { return lock_.IsInitialized(); }
    bool Uninitialize() override;
    bool ScanDevices() override;
    void ClearDevices() override;
    std::uint64_t GetDeviceCount() override;
    bool GetDevices(std::vector<MagStripeReaderInfo>& readers) override;
    bool EnableDevice(std::int32_t index, bool enable) override;
    bool IsDeviceEnabled(std::int32_t index, bool& enabled) override;
    bool AddCallback(QLMSR_Callback callback, std::uint32_t& id) override;
    bool RemoveCallback(std::int32_t id) override;
    bool ClearCallbacks() override;
    bool GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras) override;
    void Destroy() override;
    bool SetDevicesEnabled(const std::vector<std::int32_t>& indexes, bool enable) override;
    void DispatchSwipe(const MagStripeData* record) override;

  private:
    using ReaderMap = std::map<std::int32_t, std::shared_ptr<IMSRDev>>;

    void OnCardSwiped(const MagStripeData* record) override;
    void AroundSwipe(const std::atomic<bool>& stopping, const std::function<void()>& deliver) override;
    void EndWaits() override { callersLock_.EndWaits(); }

    bool Rescan();
    std::vector<std::int32_t> EnabledIndexes() const;
    // The index under which the reader is known from now on; negative when it does not answer.
    std::int32_t Adopt(const std::shared_ptr<IMSRDev>& fresh);
    IMSRDev* Find(std::int32_t index) const;

    InterruptibleLock& callersLock_;
    ReaderMap readers_;
    CallbackList callbacks_;
    CSmartCritical lock_;
    std::shared_ptr<CQlMagStripeMgr> self_;
};

}  // namespace quarlin::msr
