// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

namespace quarlin {

// Where libraries that are loaded by name come from. Handles are the system's, untyped here so that families need no
// system header for them.
class LibrarySource {
  public:
    // The library, counted once more; null when it cannot be loaded.
    virtual void* Load(const wchar_t* name) = 0;
    virtual void Free(void* library) = 0;
    // The address of an exported function; null when there is none of that name.
    virtual void* Find(void* library, const char* function) = 0;

  protected:
    constexpr LibrarySource() = default;
    constexpr ~LibrarySource() = default;
};

// The system's loader.
class SystemLibraries final : public LibrarySource {
  public:
    void* Load(const wchar_t* name) override;
    void Free(void* library) override;
    void* Find(void* library, const char* function) override;
};
extern SystemLibraries systemLibraries;

// Owns one load of a library.
class LoadedLibrary {
  public:
    constexpr LoadedLibrary() = default;
    LoadedLibrary(LibrarySource& source, const wchar_t* name) : source_(&source), handle_(source.Load(name)) {}
    LoadedLibrary(LoadedLibrary&& other) noexcept
        : source_(other.source_), handle_(std::exchange(other.handle_, nullptr)) {}
    LoadedLibrary& operator=(LoadedLibrary&& other) noexcept {
        if (this != &other) {
            Free();
            source_ = other.source_;
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }
    ~LoadedLibrary() { Free(); }

    bool IsLoaded() const { return handle_ != nullptr; }

    void Free() {
        if (void* const handle = std::exchange(handle_, nullptr)) {
            source_->Free(handle);
        }
    }

    // Gives up this load: the library stays until the process ends.
    void KeepLoaded() { handle_ = nullptr; }

    // Points `function` to the exported function, or to nothing; says which.
    template <typename Result, typename... Parameters>
    bool Find(const char* name, Result (*&function)(Parameters...)) const {
        function = reinterpret_cast<Result (*)(Parameters...)>(source_->Find(handle_, name));
        return function != nullptr;
    }

  private:
    LibrarySource* source_ = nullptr;
    void* handle_ = nullptr;
};

}  // namespace quarlin
