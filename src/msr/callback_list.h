// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <quarlin/card_reader.h>

#include <cstdint>
#include <vector>

namespace quarlin::msr {

// One function of the application that receives swipes, and the number it goes by.
class CCallbackMgr {
  public:
    CCallbackMgr() = default;
    CCallbackMgr(const CCallbackMgr&) = default;
    CCallbackMgr(CCallbackMgr&&) = default;
    CCallbackMgr& operator=(const CCallbackMgr&) = default;
    CCallbackMgr& operator=(CCallbackMgr&&) = default;
    virtual ~CCallbackMgr() = default;

    virtual std::uint32_t GetId() const { return id_; }
    // Gives the function the next number; false, with nothing changed, for null.
    virtual bool SetCallback(QLMSR_Callback callback);
    virtual void Clear();
    // Calls the function with a copy of the record's fields; the buffers are the record's own. Does nothing when there
    // is no function.
    virtual void Invoke(const MagStripeData& record) const;

  private:
    QLMSR_Callback callback_ = nullptr;
    std::uint32_t id_ = 0;
};

// The number after this one: counts up and leaves out 0.
std::uint32_t NextCallbackId(std::uint32_t id);

// The functions in the order in which they were added. Not locked.
class CallbackList {
  public:
    // The new function's number; 0, which is none, for null. Throws std::bad_alloc.
    std::uint32_t Add(QLMSR_Callback callback);
    bool Remove(std::uint32_t id);
    void Clear() { callbacks_.clear(); }

    // Calls each function. A function may add and remove: one that is removed before its turn is not called, one that
    // is added receives the next swipe. Throws std::bad_alloc before the first call.
    void Invoke(const MagStripeData& record) const;

  private:
    std::vector<CCallbackMgr> callbacks_;
};

}  // namespace quarlin::msr
