// SPDX-License-Identifier: Apache-2.0
#include "core/management_model.h"

#include "core/com_pointer_win.h"
#include "core/quarlin_exception.h"
#include "core/text.h"

#include <wbemidl.h>
#include <windows.h>
#include <array>
#include <cwchar>
#include <new>

namespace quarlin {
namespace {

void RequireSuccess(HRESULT result, const char* context) {
    if (FAILED(result)) {
        ThrowHResultError(context, result);
    }
}

// The lock of the query and of the remembered answer.
class QueryLock {
  public:
    QueryLock() { InitializeCriticalSection(&section_); }
    QueryLock(const QueryLock&) = delete;
    QueryLock& operator=(const QueryLock&) = delete;
    ~QueryLock() { DeleteCriticalSection(&section_); }

    void Enter() { EnterCriticalSection(&section_); }
    void Leave() { LeaveCriticalSection(&section_); }

  private:
    CRITICAL_SECTION section_;
};

// Enters a lock that is left by saying so, never by leaving the scope: a query that fails by exception keeps it, one
// level deeper each time, so that only its own thread can ask again.
class HeldUntilSuccess {
  public:
    explicit HeldUntilSuccess(QueryLock& lock) : lock_(lock) { lock_.Enter(); }
    void Succeeded() { lock_.Leave(); }

  private:
    QueryLock& lock_;
};

// COM for the length of one query.
class ComUse {
  public:
    ComUse() = default;
    ComUse(const ComUse&) = delete;
    ComUse& operator=(const ComUse&) = delete;
    ~ComUse() {
        if (initializedHere_) {
            CoUninitialize();
        }
    }

    void Initialize() {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (result != RPC_E_CHANGED_MODE) {
            RequireSuccess(result, "Failed to initialize COM");
        }
        // In the changed-mode case as well, where COM belongs to the application: kept for callers that count on it.
        initializedHere_ = true;
    }

    static void InitializeSecurity() {
        const HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                    RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
        if (result != RPC_E_TOO_LATE) {
            RequireSuccess(result, "Failed to initialize COM security");
        }
    }

  private:
    bool initializedHere_ = false;
};

class BasicString {
  public:
    explicit BasicString(const wchar_t* text) : text_(SysAllocString(text)) {
        if (text_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    BasicString(const BasicString&) = delete;
    BasicString& operator=(const BasicString&) = delete;
    ~BasicString() { SysFreeString(text_); }

    BSTR get() const { return text_; }

  private:
    BSTR text_;
};

class Variant {
  public:
    Variant() { VariantInit(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&value_); }

    VARIANT* Receive() { return &value_; }

    // Empty when the value is no text.
    const wchar_t* Text() const {
        return V_VT(&value_) == VT_BSTR && V_BSTR(&value_) != nullptr ? V_BSTR(&value_) : L"";
    }

  private:
    VARIANT value_;
};

// One query, with its objects. They are released from the last to the first, then COM is.
class ModelQuery {
  public:
    void Connect() {
        com_.Initialize();
        ComUse::InitializeSecurity();
        RequireSuccess(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                        reinterpret_cast<void**>(locator_.Receive())),
                       "Failed to create WMI Locator");
        RequireSuccess(locator_->ConnectServer(BasicString(L"ROOT\\CIMV2").get(), nullptr, nullptr, nullptr, 0, nullptr,
                                               nullptr, service_.Receive()),
                       "Could not connect to WMI");
        if (!service_) {
            throw QuarlinException(QLERR_INTERNAL_ERROR, "WMI Service not initialized");
        }
        RequireSuccess(CoSetProxyBlanket(service_.get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                         RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE),
                       "Could not set proxy blanket");
    }

    void Fetch(Variant& model) {
        RequireSuccess(
            service_->ExecQuery(BasicString(L"WQL").get(), BasicString(L"SELECT Model FROM Win32_ComputerSystem").get(),
                                WBEM_FLAG_FORWARD_ONLY, nullptr, enumerator_.Receive()),
            "Failed to query model number");
        ULONG returned = 0;
        HRESULT next = WBEM_S_FALSE;
        if (enumerator_) {
            next = enumerator_->Next(static_cast<LONG>(WBEM_INFINITE), 1, object_.Receive(), &returned);
        }
        if (FAILED(next) || returned == 0 || !object_) {
            ThrowHResultError("Failed to retrieve model number", next);
        }
        RequireSuccess(object_->Get(L"Model", 0, model.Receive(), nullptr, nullptr), "Failed to retrieve WMI value");
    }

  private:
    ComUse com_;
    ComPointer<IWbemLocator> locator_;
    ComPointer<IWbemServices> service_;
    ComPointer<IEnumWbemClassObject> enumerator_;
    ComPointer<IWbemClassObject> object_;
};

class CachedModel {
  public:
    const char* Get() {
        HeldUntilSuccess lock(lock_);
        if (!cached_) {
            Query();
            cached_ = true;
        }
        lock.Succeeded();
        return text_.data();
    }

  private:
    void Query() {
        ModelQuery query;
        query.Connect();
        try {
            Variant model;
            query.Fetch(model);
            Store(model.Text());
        } catch (...) {
            text_[0] = '\0';
            throw;
        }
    }

    // A longer text leaves the buffer as it was.
    void Store(const wchar_t* model) {
        if (std::wcslen(model) + 1 <= text_.size()) {
            WideToUtf8(text_.data(), static_cast<int>(text_.size()), model);
            // A conversion that was cut leaves no terminator.
            text_.back() = '\0';
        }
    }

    QueryLock lock_;
    bool cached_ = false;
    std::array<char, 250> text_{};
};

CachedModel cachedModel;

}  // namespace

const char* ManagementModel() {
    return cachedModel.Get();
}

}  // namespace quarlin
