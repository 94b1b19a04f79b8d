// SPDX-License-Identifier: Apache-2.0
#include "management/instructions_win.h"

namespace qlsim {

namespace {

constexpr const wchar_t* kModelVariable = L"QLSIM_MODEL";
constexpr const wchar_t* kModelKey = L"Software\\Norvane\\QuarlinSim";
constexpr const wchar_t* kModelValue = L"Model";
constexpr const wchar_t* kDefaultModel = L"JR-56SIM";

// Null when the variable is unset.
BSTR ModelOfEnvironment() {
    // Longer than any variable can be.
    constexpr DWORD kCapacity = 32768;
    auto* text = static_cast<wchar_t*>(Allocate(kCapacity * sizeof(wchar_t)));
    if (text == nullptr) {
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableW(kModelVariable, text, kCapacity);
    const bool isSet = length != 0 || GetLastError() != ERROR_ENVVAR_NOT_FOUND;
    BSTR model = isSet ? SysAllocStringLen(text, length) : nullptr;
    Free(text);
    return model;
}

// Null when the value is missing or no text.
BSTR ModelOfRegistry() {
    DWORD bytes = 0;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, kModelKey, kModelValue, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) !=
        ERROR_SUCCESS) {
        return nullptr;
    }
    auto* text = static_cast<wchar_t*>(Allocate(bytes));
    BSTR model = nullptr;
    if (text != nullptr && RegGetValueW(HKEY_LOCAL_MACHINE, kModelKey, kModelValue, RRF_RT_REG_SZ, nullptr, text,
                                        &bytes) == ERROR_SUCCESS) {
        model = SysAllocString(text);
    }
    Free(text);
    return model;
}

}  // namespace

Instruction::Instruction(const wchar_t* step) {
    given_ = FindSetting(L"QLSIM_MANAGEMENT", step, &value_);
}

bool Instruction::Is(const wchar_t* keyword) const {
    return given_ && lstrcmpW(value_.text, keyword) == 0;
}

HRESULT Instruction::Result() const {
    DWORD number = 0;
    return ParseNumber(value_.text, &number) ? static_cast<HRESULT>(number) : E_UNEXPECTED;
}

BSTR AllocateModel() {
    BSTR model = ModelOfEnvironment();
    if (model == nullptr) {
        model = ModelOfRegistry();
    }
    return model != nullptr ? model : SysAllocString(kDefaultModel);
}

}  // namespace qlsim
