// SPDX-License-Identifier: Apache-2.0
// Watches or fails single system calls of qlsdk.dll: an entry of its import table is pointed at a function of the test.
// The DLL knows nothing of it, and no other module is touched.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace quarlin::test {

// The slot of a module's import table that holds the address of a function; null when the module does not import it.
// The DLL's name is compared without regard to case, the function's name with.
void** FindImportSlot(HMODULE module, std::string_view dll, std::string_view function);

// Points a slot elsewhere and returns what was there. Import tables are read-only once the loader is done with them.
void* ReplaceImportSlot(void** slot, void* replacement);

// The system's own function, whatever the import tables say: for a hook of the program itself, whose own calls go
// through the replaced entry too.
template <typename Function>
Function* SystemFunction(const char* dll, const char* function) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(dll), function)));
}

// One replaced entry; the old one comes back at the end of the scope. Throws std::runtime_error when there is no such
// import, so that a test of a call that the DLL no longer makes does not pass by itself.
class ImportHook {
  public:
    template <typename Function>
    ImportHook(std::string_view dll, std::string_view function, Function* replacement,
               HMODULE module = GetModuleHandleW(L"qlsdk.dll"))
        : ImportHook(module, dll, function, reinterpret_cast<void*>(replacement)) {}
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;
    ~ImportHook();

  private:
    ImportHook(HMODULE module, std::string_view dll, std::string_view function, void* replacement);

    void** slot_;
    void* original_;
};

// Hooks that are in place before the DLL's first instruction runs: the loader tells about a library between mapping it
// and calling its entry point. Construct, Add, load the library; the entries come back at the end of the scope when
// the library is still there. An import that is not found is told by Missing().
class LoadTimeHooks {
  public:
    explicit LoadTimeHooks(std::wstring libraryBaseName = L"qlsdk.dll");
    LoadTimeHooks(const LoadTimeHooks&) = delete;
    LoadTimeHooks& operator=(const LoadTimeHooks&) = delete;
    ~LoadTimeHooks();

    template <typename Function>
    void Add(std::string dll, std::string function, Function* replacement) {
        wanted_.push_back({std::move(dll), std::move(function), reinterpret_cast<void*>(replacement)});
    }

    // How often the library was loaded with the hooks in place.
    int Loads() const { return loads_; }
    // Functions of the last load that the library does not import.
    const std::vector<std::string>& Missing() const { return missing_; }

  private:
    struct Wanted {
        std::string dll;
        std::string function;
        void* replacement;
    };
    struct Installed {
        void** slot;
        void* original;
    };

    static void CALLBACK OnNotification(ULONG reason, const void* data, void* context);
    void Install(HMODULE module);

    std::wstring name_;
    std::vector<Wanted> wanted_;
    std::vector<Installed> installed_;
    std::vector<std::string> missing_;
    int loads_ = 0;
    void* cookie_ = nullptr;
};

}  // namespace quarlin::test
