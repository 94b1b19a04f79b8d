// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/loaded_library.h"
#include "core/quarlin_exception.h"

namespace quarlin::bcr {

// An engine's library with all of its procedures, or nothing. Table has them and ForEach.
template <typename Table>
class EngineLibrary {
  public:
    explicit EngineLibrary(LibrarySource& source) : source_(&source) {}

    bool IsLoaded() const { return library_.IsLoaded(); }
    const Table& Functions() const { return functions_; }
    const Table* operator->() const { return &functions_; }

    // Frees what was loaded before. Raises QLERR_INTERNAL_ERROR, with the given text when there is no such library, and
    // leaves nothing loaded then.
    void Load(const wchar_t* file, const char* missing) {
        Free();
        library_ = LoadedLibrary(*source_, file);
        Require(library_.IsLoaded(), QLERR_INTERNAL_ERROR, missing);
        bool complete = true;
        // Which one is missing is not told: the text names what to do about it.
        functions_.ForEach(
            [&](const char* name, auto& function) { complete = complete && library_.Find(name, function); });
        if (!complete) {
            Free();
            Fail(QLERR_INTERNAL_ERROR,
                 "Unable to load internal functions. Possibly due to misplaced or incorrect dlls.");
        }
    }

    void Free() {
        functions_ = {};
        library_.Free();
    }

  private:
    LibrarySource* source_;
    LoadedLibrary library_;
    Table functions_;
};

}  // namespace quarlin::bcr
