// SPDX-License-Identifier: Apache-2.0
// The simulated machine's Windows management, as the tests of this process set it.
#pragma once

#include <qlsim_wbem.h>

#include <windows.h>

#include <array>
#include <string>

#include "support/machine_state_win.h"
#include "support/owners_win.h"

namespace quarlin::test {

// Its model and its faults are read from the environment at each call; both are as before when the test ends. It also
// keeps a record of what was called and of what was released.
class ManagementStandIn {
  public:
    ManagementStandIn() {
        model_.Remove();
        faults_.Remove();
    }

    void SetModel(const std::wstring& model) { model_.Set(model); }
    // "step=HRESULT", or a keyword of that step, separated by semicolons.
    void SetFaults(const std::wstring& faults) { faults_.Set(faults); }
    void ClearFaults() { faults_.Remove(); }

    // Both logs are separated by blanks.
    std::string Calls() const { return Log("QlsimWbemCallLog"); }
    std::string Released() const { return Log("QlsimWbemReleaseLog"); }
    void ClearLogs() const { Function<decltype(&QlsimWbemClearLogs)>("QlsimWbemClearLogs")(); }
    int LiveObjects() const { return Function<decltype(&QlsimWbemLiveObjects)>("QlsimWbemLiveObjects")(); }

  private:
    template <typename Pointer>
    Pointer Function(const char* name) const {
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(server_.Get(), name)));
    }
    std::string Log(const char* function) const {
        std::array<char, 4096> text{};
        Function<decltype(&QlsimWbemCallLog)>(function)(text.data(), static_cast<int>(text.size()));
        return text.data();
    }

    EnvironmentGuard model_{L"QLSIM_MODEL"};
    EnvironmentGuard faults_{L"QLSIM_MANAGEMENT"};
    UniqueModule server_{LoadLibraryW(L"qlsim_wbem.dll")};
};

}  // namespace quarlin::test
