// SPDX-License-Identifier: Apache-2.0
// The chain of objects that a model query walks: locator, service, enumerator, object. Each step can be told to fail.
#include "management/objects_win.h"

#include <stdio.h>

#include "management/counted_win.h"
#include "management/instructions_win.h"
#include "management/unsupported_win.h"

namespace qlsim {

namespace {

constexpr const wchar_t* kNamespace = L"ROOT\\CIMV2";
constexpr const wchar_t* kLanguage = L"WQL";
constexpr const wchar_t* kQuery = L"SELECT Model FROM Win32_ComputerSystem";
constexpr const wchar_t* kProperty = L"Model";

// Management names and queries compare without case. A null text equals nothing.
bool Same(const wchar_t* given, const wchar_t* expected) {
    return given != nullptr && lstrcmpiW(given, expected) == 0;
}

template <typename Object, typename Interface>
HRESULT HandOver(Object* object, Interface** out) {
    *out = object;
    return object != nullptr ? WBEM_S_NO_ERROR : WBEM_E_OUT_OF_MEMORY;
}

class ClassObject final : public Counted<UnsupportedClassObject> {
  public:
    ClassObject() : Counted("object") {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return AnswerIfAsked(iid, IID_IWbemClassObject, object);
    }

    HRESULT STDMETHODCALLTYPE Get(const wchar_t* name, LONG, VARIANT* value, CIMTYPE* type, LONG* flavor) override {
        callJournal.Add("get");
        const Instruction instruction(L"get");
        if (instruction.Is(L"int")) {
            value->vt = VT_I4;
            value->lVal = 56;
        } else if (instruction.Is(L"null")) {
            value->vt = VT_NULL;
        } else if (instruction.Is(L"bstrnull")) {
            value->vt = VT_BSTR;
            value->bstrVal = nullptr;
        } else if (instruction.Ends()) {
            return instruction.Result();
        } else if (!Same(name, kProperty)) {
            return WBEM_E_NOT_FOUND;
        } else {
            BSTR model = AllocateModel();
            if (model == nullptr) {
                return WBEM_E_OUT_OF_MEMORY;
            }
            value->vt = VT_BSTR;
            value->bstrVal = model;
        }
        if (type != nullptr) {
            *type = value->vt == VT_I4 ? CIM_SINT32 : CIM_STRING;
        }
        if (flavor != nullptr) {
            *flavor = WBEM_FLAVOR_ORIGIN_LOCAL;
        }
        return WBEM_S_NO_ERROR;
    }
};

class Enumerator final : public Counted<UnsupportedEnumerator> {
  public:
    Enumerator() : Counted("enumerator") {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return AnswerIfAsked(iid, IID_IEnumWbemClassObject, object);
    }

    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override {
        JournalEntry entry;
        snprintf(entry.text, sizeof(entry.text), "next(0x%lx,%lu)", static_cast<ULONG>(timeout), count);
        callJournal.Add(entry.text);
        if (objects == nullptr || returned == nullptr || count == 0) {
            return WBEM_E_INVALID_PARAMETER;
        }
        *objects = nullptr;
        *returned = 0;
        const Instruction instruction(L"next");
        if (instruction.Is(L"null")) {
            return WBEM_S_NO_ERROR;
        }
        if (instruction.Is(L"none")) {
            return WBEM_S_FALSE;
        }
        if (instruction.Ends()) {
            return instruction.Result();
        }
        if (done_) {
            return WBEM_S_FALSE;
        }
        const HRESULT result = HandOver(new ClassObject, objects);
        if (SUCCEEDED(result)) {
            done_ = true;
            *returned = 1;
        }
        if (SUCCEEDED(result) && count > 1) {
            return WBEM_S_FALSE;
        }
        return result;
    }

  private:
    // There is one computer.
    bool done_ = false;
};

// The part of a service's proxy that CoSetProxyBlanket talks to. It lives inside its service and shares its references.
class ProxySecurity final : public UnsupportedClientSecurity {
  public:
    explicit ProxySecurity(IUnknown* service) : service_(service) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return service_->QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return service_->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return service_->Release(); }

    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authentication, DWORD authorization, wchar_t*, DWORD level,
                                         DWORD impersonation, void*, DWORD capabilities) override {
        JournalEntry entry;
        snprintf(entry.text, sizeof(entry.text), "blanket(%lu,%lu,%lu,%lu,%lu)", authentication, authorization, level,
                 impersonation, capabilities);
        callJournal.Add(entry.text);
        const Instruction instruction(L"blanket");
        return instruction.Ends() ? instruction.Result() : S_OK;
    }

  private:
    IUnknown* service_;
};

class Service final : public Counted<UnsupportedServices> {
  public:
    Service() : Counted("service"), security_(this) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object != nullptr && IsEqualIID(iid, IID_IClientSecurity)) {
            AddRef();
            *object = &security_;
            return S_OK;
        }
        return AnswerIfAsked(iid, IID_IWbemServices, object);
    }

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext*,
                                        IEnumWbemClassObject** enumerator) override {
        JournalEntry entry;
        snprintf(entry.text, sizeof(entry.text), "query(0x%lx)", static_cast<ULONG>(flags));
        callJournal.Add(entry.text);
        if (enumerator == nullptr) {
            return WBEM_E_INVALID_PARAMETER;
        }
        *enumerator = nullptr;
        const Instruction instruction(L"query");
        if (instruction.Ends()) {
            return instruction.Result();
        }
        if (!Same(language, kLanguage)) {
            return WBEM_E_INVALID_QUERY_TYPE;
        }
        if (!Same(query, kQuery)) {
            return WBEM_E_INVALID_QUERY;
        }
        return HandOver(new Enumerator, enumerator);
    }

  private:
    ProxySecurity security_;
};

class Locator final : public Counted<IWbemLocator> {
  public:
    Locator() : Counted("locator") {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return AnswerIfAsked(iid, IID_IWbemLocator, object);
    }

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR, const BSTR, const BSTR, LONG, const BSTR,
                                            IWbemContext*, IWbemServices** service) override {
        callJournal.Add("connect");
        if (service == nullptr) {
            return WBEM_E_INVALID_PARAMETER;
        }
        *service = nullptr;
        const Instruction instruction(L"connect");
        if (instruction.Is(L"null")) {
            return WBEM_S_NO_ERROR;
        }
        if (instruction.Ends()) {
            return instruction.Result();
        }
        if (!Same(resource, kNamespace)) {
            return WBEM_E_INVALID_NAMESPACE;
        }
        return HandOver(new Service, service);
    }
};

}  // namespace

IWbemLocator* MakeLocator() {
    return new Locator;
}

}  // namespace qlsim
