// SPDX-License-Identifier: Apache-2.0
// The sounds that qlsdk.dll has the system play.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/import_hook_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {

struct PlayedSound {
    std::string path;  // UTF-8
    bool fromModule = false;
    DWORD flags = 0;
    DWORD thread = 0;

    bool operator==(const PlayedSound&) const = default;
};

// One at a time, from here to the end of the scope. Nothing is heard meanwhile.
class SoundWatch {
  public:
    SoundWatch() {
        const std::lock_guard held(lock_);
        sounds_.clear();
        whenPlayed_ = {};
    }
    SoundWatch(const SoundWatch&) = delete;
    SoundWatch& operator=(const SoundWatch&) = delete;

    static std::vector<PlayedSound> Sounds() {
        const std::lock_guard held(lock_);
        return sounds_;
    }
    // The files alone.
    static std::vector<std::string> Paths() {
        std::vector<std::string> paths;
        for (const PlayedSound& sound : Sounds()) {
            paths.push_back(sound.path);
        }
        return paths;
    }
    static void Clear() {
        const std::lock_guard held(lock_);
        sounds_.clear();
    }
    // Called with each sound.
    static void WhenPlayed(std::function<void()> action) {
        const std::lock_guard held(lock_);
        whenPlayed_ = std::move(action);
    }
    // What the system answers; playing is refused when false.
    static void Answer(bool answer) {
        const std::lock_guard held(lock_);
        answer_ = answer ? TRUE : FALSE;
    }

  private:
    static BOOL WINAPI Play(const wchar_t* path, HMODULE module, DWORD flags) {
        std::function<void()> action;
        BOOL answer = TRUE;
        {
            const std::lock_guard held(lock_);
            sounds_.push_back({path == nullptr ? std::string("(null)") : ToUtf8(path), module != nullptr, flags,
                               GetCurrentThreadId()});
            action = whenPlayed_;
            answer = answer_;
        }
        if (action) {
            action();
        }
        return answer;
    }

    // The library looks for PlaySoundW when it plays.
    static FARPROC WINAPI Find(HMODULE library, const char* function) {
        const bool isName = (reinterpret_cast<std::uintptr_t>(function) >> 16) != 0;
        if (isName && std::string_view(function) == "PlaySoundW") {
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Play));
        }
        return GetProcAddress(library, function);
    }

    inline static std::mutex lock_;
    inline static std::vector<PlayedSound> sounds_;
    inline static std::function<void()> whenPlayed_;
    inline static BOOL answer_ = TRUE;
    ImportHook hook_{"KERNEL32.dll", "GetProcAddress", &Find};
};

}  // namespace quarlin::test
