// SPDX-License-Identifier: Apache-2.0
// The COM server around the stand-in: COM loads it for CLSID_WbemLocator.
#include <windows.h>

#include <wbemcli.h>

#include "management/instructions_win.h"
#include "management/journal_win.h"
#include "management/objects_win.h"

namespace qlsim {

namespace {

volatile LONG serverLocks = 0;

// The one class object lives as long as the DLL and counts nothing.
class LocatorClass final : public IClassFactory {
  public:
    constexpr LocatorClass() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        callJournal.Add("create");
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        const Instruction instruction(L"create");
        if (instruction.Ends()) {
            return instruction.Result();
        }
        if (outer != nullptr) {
            return CLASS_E_NOAGGREGATION;
        }
        IWbemLocator* locator = MakeLocator();
        if (locator == nullptr) {
            return E_OUTOFMEMORY;
        }
        const HRESULT result = locator->QueryInterface(iid, object);
        locator->Release();
        return result;
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (lock != FALSE) {
            InterlockedIncrement(&serverLocks);
        } else {
            InterlockedDecrement(&serverLocks);
        }
        return S_OK;
    }
};

constinit LocatorClass locatorClass;

}  // namespace

}  // namespace qlsim

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    if (!IsEqualCLSID(classId, CLSID_WbemLocator)) {
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    return qlsim::locatorClass.QueryInterface(iid, object);
}

STDAPI DllCanUnloadNow() {
    return qlsim::liveObjects == 0 && qlsim::serverLocks == 0 ? S_OK : S_FALSE;
}

// Abstract classes refer to it; the C++ runtime's own would bring in its exception machinery.
extern "C" void __cxa_pure_virtual() {
    __builtin_trap();
}
