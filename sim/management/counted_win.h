// SPDX-License-Identifier: Apache-2.0
// Reference counting of the stand-in's COM objects, with a record of each object's end.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include "management/journal_win.h"
#include "settings/settings_win.h"

namespace qlsim {

// An object starts with the one reference that its maker hands to the caller.
template <typename Interface>
class Counted : public Interface {
  public:
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }

    ULONG STDMETHODCALLTYPE Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) {
            releaseJournal.Add(name_);
            delete this;
            InterlockedDecrement(&liveObjects);
        }
        return static_cast<ULONG>(left);
    }

    // Null when memory is short, like every `new` without exceptions.
    static void* operator new(size_t bytes) noexcept { return Allocate(bytes); }
    static void operator delete(void* block) noexcept { Free(block); }

  protected:
    explicit Counted(const char* name) : name_(name) { InterlockedIncrement(&liveObjects); }
    virtual ~Counted() = default;

    // The answer to QueryInterface for an object that has one interface beside IUnknown.
    HRESULT AnswerIfAsked(REFIID wanted, REFIID own, void** object) {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, own)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }

  private:
    volatile LONG references_ = 1;
    const char* name_;
};

}  // namespace qlsim
