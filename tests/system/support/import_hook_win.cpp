// SPDX-License-Identifier: Apache-2.0
#include "support/import_hook_win.h"

#include <winternl.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace quarlin::test {
namespace {

// ntdll's notification interface has no header.
struct DllNotification {
    ULONG flags;
    const UNICODE_STRING* fullName;
    const UNICODE_STRING* baseName;
    void* base;
    ULONG size;
};
constexpr ULONG kLoaded = 1;
constexpr ULONG kUnloaded = 2;
using NotificationFunction = void(CALLBACK*)(ULONG, const void*, void*);
using RegisterFunction = NTSTATUS(NTAPI*)(ULONG, NotificationFunction, void*, void**);
using UnregisterFunction = NTSTATUS(NTAPI*)(void*);

template <typename Function>
Function NtdllFunction(const char* name) {
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name);
    if (address == nullptr) {
        throw std::runtime_error(std::string("ntdll.dll has no ") + name);
    }
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

bool SameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && _strnicmp(a.data(), b.data(), a.size()) == 0;
}

template <typename T>
T* At(std::byte* base, uintptr_t offset) {
    return reinterpret_cast<T*>(base + offset);
}

}  // namespace

void** FindImportSlot(HMODULE module, std::string_view dll, std::string_view function) {
    auto* base = reinterpret_cast<std::byte*>(module);
    const auto* dos = At<IMAGE_DOS_HEADER>(base, 0);
    const auto* nt = At<IMAGE_NT_HEADERS64>(base, static_cast<uintptr_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (directory.VirtualAddress == 0) {
        return nullptr;
    }
    for (const auto* entry = At<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress); entry->Name != 0; ++entry) {
        if (!SameName(At<char>(base, entry->Name), dll)) {
            continue;
        }
        const auto* name = At<IMAGE_THUNK_DATA64>(base, entry->OriginalFirstThunk);
        auto* address = At<IMAGE_THUNK_DATA64>(base, entry->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) {
                continue;
            }
            const auto* imported = At<IMAGE_IMPORT_BY_NAME>(base, name->u1.AddressOfData);
            if (function == std::string_view(reinterpret_cast<const char*>(imported->Name))) {
                return reinterpret_cast<void**>(&address->u1.Function);
            }
        }
    }
    return nullptr;
}

void* ReplaceImportSlot(void** slot, void* replacement) {
    DWORD oldProtection = 0;
    VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &oldProtection);
    void* const original = InterlockedExchangePointer(slot, replacement);
    VirtualProtect(slot, sizeof(*slot), oldProtection, &oldProtection);
    return original;
}

ImportHook::ImportHook(HMODULE module, std::string_view dll, std::string_view function, void* replacement)
    : slot_(module == nullptr ? nullptr : FindImportSlot(module, dll, function)), original_(nullptr) {
    if (slot_ == nullptr) {
        throw std::runtime_error("no import of " + std::string(function) + " from " + std::string(dll));
    }
    original_ = ReplaceImportSlot(slot_, replacement);
}

ImportHook::~ImportHook() {
    ReplaceImportSlot(slot_, original_);
}

LoadTimeHooks::LoadTimeHooks(std::wstring libraryBaseName) : name_(std::move(libraryBaseName)) {
    const auto subscribe = NtdllFunction<RegisterFunction>("LdrRegisterDllNotification");
    if (subscribe(0, &OnNotification, this, &cookie_) != 0) {
        throw std::runtime_error("LdrRegisterDllNotification failed");
    }
}

LoadTimeHooks::~LoadTimeHooks() {
    NtdllFunction<UnregisterFunction>("LdrUnregisterDllNotification")(cookie_);
    for (const Installed& hook : installed_) {
        ReplaceImportSlot(hook.slot, hook.original);
    }
}

void CALLBACK LoadTimeHooks::OnNotification(ULONG reason, const void* data, void* context) {
    auto* const self = static_cast<LoadTimeHooks*>(context);
    const auto* const notification = static_cast<const DllNotification*>(data);
    const std::wstring_view name(notification->baseName->Buffer, notification->baseName->Length / sizeof(wchar_t));
    if (name.size() != self->name_.size() || _wcsnicmp(name.data(), self->name_.data(), name.size()) != 0) {
        return;
    }
    if (reason == kLoaded) {
        self->Install(static_cast<HMODULE>(notification->base));
    } else if (reason == kUnloaded) {
        self->installed_.clear();
    }
}

void LoadTimeHooks::Install(HMODULE module) {
    ++loads_;
    missing_.clear();
    for (const Wanted& hook : wanted_) {
        void** const slot = FindImportSlot(module, hook.dll, hook.function);
        if (slot == nullptr) {
            missing_.push_back(hook.dll + "!" + hook.function);
            continue;
        }
        installed_.push_back({slot, ReplaceImportSlot(slot, hook.replacement)});
    }
}

}  // namespace quarlin::test
