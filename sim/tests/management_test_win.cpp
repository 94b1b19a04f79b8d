// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <windows.h>

#include <wbemidl.h>

#include <string>

#include "management/qlsim_wbem.h"

namespace {

// A reference that is released with its owner, or before.
template <typename Interface>
class Held {
  public:
    Held() = default;
    ~Held() { Drop(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    void Drop() {
        if (pointer_ != nullptr) {
            pointer_->Release();
            pointer_ = nullptr;
        }
    }
    Interface** Out() { return &pointer_; }
    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }

  private:
    Interface* pointer_ = nullptr;
};

class Text {
  public:
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    ~Text() { SysFreeString(text_); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    BSTR Get() const { return text_; }

  private:
    BSTR text_;
};

// What one model query came to: the step that failed (or "done"), its result, and the model.
struct Outcome {
    std::string step = "done";
    HRESULT result = S_OK;
    VARTYPE type = VT_EMPTY;
    std::wstring model;
};

class Management : public testing::Test {
  protected:
    HMODULE dll = nullptr;
    decltype(&QlsimWbemLiveObjects) liveObjects = nullptr;
    decltype(&QlsimWbemReleaseLog) releaseLog = nullptr;
    decltype(&QlsimWbemCallLog) callLog = nullptr;

    void SetUp() override {
        dll = LoadLibraryW(L"qlsim_wbem.dll");
        ASSERT_NE(dll, nullptr);
        Find(liveObjects, "QlsimWbemLiveObjects");
        Find(releaseLog, "QlsimWbemReleaseLog");
        Find(callLog, "QlsimWbemCallLog");
        decltype(&QlsimWbemClearLogs) clearLogs = nullptr;
        Find(clearLogs, "QlsimWbemClearLogs");
        clearLogs();
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        Tell(nullptr);
        SetModel(nullptr);
    }

    void TearDown() override {
        Tell(nullptr);
        SetModel(nullptr);
        EXPECT_EQ(liveObjects(), 0);
        CoUninitialize();
        FreeLibrary(dll);
    }

    template <typename Function>
    void Find(Function& function, const char* name) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(dll, name)));
        ASSERT_NE(function, nullptr) << name;
    }

    static void Tell(const char* faults) { SetEnvironmentVariableA("QLSIM_MANAGEMENT", faults); }
    static void SetModel(const wchar_t* model) { SetEnvironmentVariableW(L"QLSIM_MODEL", model); }

    static std::string Read(int (*log)(char*, int)) {
        std::string text(static_cast<size_t>(log(nullptr, 0)) + 1, '\0');
        log(text.data(), static_cast<int>(text.size()));
        text.pop_back();
        return text;
    }

    static Outcome Query(const wchar_t* resource = L"ROOT\\CIMV2", const wchar_t* language = L"WQL",
                         const wchar_t* query = L"SELECT Model FROM Win32_ComputerSystem",
                         const wchar_t* property = L"Model") {
        const auto failed = [](const char* step, HRESULT result) { return Outcome{step, result, VT_EMPTY, {}}; };
        Held<IWbemLocator> locator;
        HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                          reinterpret_cast<void**>(locator.Out()));
        if (FAILED(result)) {
            return failed("create", result);
        }
        Held<IWbemServices> service;
        result =
            locator->ConnectServer(Text(resource).Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, service.Out());
        if (FAILED(result) || service.Get() == nullptr) {
            return failed("connect", result);
        }
        result = CoSetProxyBlanket(service.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                   RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
        if (FAILED(result)) {
            return failed("blanket", result);
        }
        Held<IEnumWbemClassObject> enumerator;
        result = service->ExecQuery(Text(language).Get(), Text(query).Get(), WBEM_FLAG_FORWARD_ONLY, nullptr,
                                    enumerator.Out());
        if (FAILED(result)) {
            return failed("query", result);
        }
        Held<IWbemClassObject> object;
        ULONG count = 0;
        result = enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.Out(), &count);
        if (FAILED(result) || object.Get() == nullptr) {
            return failed("next", result);
        }
        VARIANT value;
        VariantInit(&value);
        result = object->Get(property, 0, &value, nullptr, nullptr);
        if (FAILED(result)) {
            return failed("get", result);
        }
        Outcome outcome;
        outcome.type = value.vt;
        if (value.vt == VT_BSTR && value.bstrVal != nullptr) {
            outcome.model.assign(value.bstrVal, SysStringLen(value.bstrVal));
        }
        VariantClear(&value);
        return outcome;
    }
};

TEST_F(Management, TellsTheModel) {
    SetModel(L"JR-51Ünïcode");
    const Outcome outcome = Query();
    EXPECT_EQ(outcome.step, "done");
    EXPECT_EQ(outcome.model, L"JR-51Ünïcode");
}

TEST_F(Management, HasADefaultModel) {
    EXPECT_EQ(Query().model, L"JR-56SIM");
}

TEST_F(Management, CanHaveAnEmptyOrALongModel) {
    SetModel(L"");
    Outcome outcome = Query();
    EXPECT_EQ(outcome.type, VT_BSTR);
    EXPECT_EQ(outcome.model, L"");
    const std::wstring longModel(251, L'm');
    SetModel(longModel.c_str());
    EXPECT_EQ(Query().model, longModel);
}

TEST_F(Management, TakesTheModelFromTheRegistryWhenTheEnvironmentHasNone) {
    constexpr const wchar_t* kKey = L"Software\\Norvane\\QuarlinSim";
    const wchar_t model[] = L"JR-52REG";
    ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, L"Model", REG_SZ, model, sizeof(model)), ERROR_SUCCESS);
    EXPECT_EQ(Query().model, model);
    ASSERT_EQ(RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kKey, L"Model"), ERROR_SUCCESS);
}

TEST_F(Management, RecordsTheSteps) {
    Query();
    EXPECT_EQ(Read(callLog), "create connect blanket(10,0,3,3,0) query(0x20) next(0xffffffff,1) get");
}

TEST_F(Management, RecordsTheOrderOfRelease) {
    Query();
    EXPECT_EQ(Read(releaseLog), "object enumerator service locator");
}

TEST_F(Management, CutsALogToTheBuffer) {
    Query();
    char buffer[7] = "??????";
    EXPECT_EQ(releaseLog(buffer, 7), 33);
    EXPECT_STREQ(buffer, "object");
}

TEST_F(Management, CountsWhatACallerKeeps) {
    Held<IWbemLocator> locator;
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Out())),
              S_OK);
    EXPECT_EQ(liveObjects(), 1);
    Held<IWbemServices> service;
    ASSERT_EQ(locator->ConnectServer(Text(L"root\\cimv2").Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                     service.Out()),
              S_OK);
    EXPECT_EQ(liveObjects(), 2);
    locator.Drop();
    EXPECT_EQ(liveObjects(), 1);
    EXPECT_EQ(Read(releaseLog), "locator");
}

TEST_F(Management, HasOneComputer) {
    Held<IWbemLocator> locator;
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Out())),
              S_OK);
    Held<IWbemServices> service;
    locator->ConnectServer(Text(L"ROOT\\CIMV2").Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, service.Out());
    Held<IEnumWbemClassObject> enumerator;
    service->ExecQuery(Text(L"WQL").Get(), Text(L"SELECT Model FROM Win32_ComputerSystem").Get(),
                       WBEM_FLAG_FORWARD_ONLY, nullptr, enumerator.Out());
    Held<IWbemClassObject> first;
    Held<IWbemClassObject> second;
    ULONG count = 0;
    EXPECT_EQ(enumerator->Next(0, 1, first.Out(), &count), S_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(enumerator->Next(0, 1, second.Out(), &count), WBEM_S_FALSE);
    EXPECT_EQ(count, 0u);
}

TEST_F(Management, DoesNothingElse) {
    Held<IWbemLocator> locator;
    ASSERT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Out())),
              S_OK);
    Held<IWbemServices> service;
    locator->ConnectServer(Text(L"ROOT\\CIMV2").Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, service.Out());
    EXPECT_EQ(service->DeleteClass(nullptr, 0, nullptr, nullptr), E_NOTIMPL);
    Held<IDispatch> dispatch;
    EXPECT_EQ(service->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out())), E_NOINTERFACE);
}

TEST_F(Management, RefusesWhatWindowsWouldRefuse) {
    Outcome outcome = Query(L"ROOT\\WMI");
    EXPECT_EQ(outcome.step, "connect");
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE));
    outcome = Query(L"ROOT\\CIMV2", L"SQL");
    EXPECT_EQ(outcome.step, "query");
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(WBEM_E_INVALID_QUERY_TYPE));
    outcome = Query(L"ROOT\\CIMV2", L"WQL", L"SELECT Model FROM");
    EXPECT_EQ(outcome.step, "query");
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(WBEM_E_INVALID_QUERY));
    outcome = Query(L"ROOT\\CIMV2", L"WQL", L"SELECT Model FROM Win32_ComputerSystem", L"Name");
    EXPECT_EQ(outcome.step, "get");
    EXPECT_EQ(outcome.result, static_cast<HRESULT>(WBEM_E_NOT_FOUND));
}

// ---- faults on request ----

struct Fault {
    const char* setting;
    const char* step;
    unsigned result;
};

void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.setting;
}

class ManagementFault : public Management, public testing::WithParamInterface<Fault> {};

TEST_P(ManagementFault, EndsTheQueryAtItsStepAndLeavesNothingAlive) {
    Tell(GetParam().setting);
    const Outcome outcome = Query();
    EXPECT_EQ(outcome.step, GetParam().step);
    EXPECT_EQ(static_cast<unsigned>(outcome.result), GetParam().result);
    EXPECT_EQ(liveObjects(), 0);
    Tell(nullptr);
    EXPECT_EQ(Query().step, "done");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ManagementFault,
    testing::Values(Fault{"create=0x80040154", "create", 0x80040154},
                    Fault{"connect=0x80041003", "connect", 0x80041003}, Fault{"connect=null", "connect", 0},
                    Fault{"blanket=0x80070005", "blanket", 0x80070005}, Fault{"query=0x80041017", "query", 0x80041017},
                    Fault{"next=0x80041001", "next", 0x80041001}, Fault{"next=none", "next", 1},
                    Fault{"next=null", "next", 0}, Fault{"get=0x80041002", "get", 0x80041002},
                    Fault{"get=2147749890", "get", 0x80041002}, Fault{"blanket=0;get=0x80041002", "get", 0x80041002},
                    Fault{"query=oops", "query", 0x8000FFFF}));

TEST_F(Management, GivesValuesOfOtherTypes) {
    Tell("get=int");
    EXPECT_EQ(Query().type, VT_I4);
    Tell("get=null");
    EXPECT_EQ(Query().type, VT_NULL);
    Tell("get=bstrnull");
    const Outcome outcome = Query();
    EXPECT_EQ(outcome.type, VT_BSTR);
    EXPECT_EQ(outcome.model, L"");
}

}  // namespace
