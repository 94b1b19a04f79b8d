// SPDX-License-Identifier: Apache-2.0
#include "gps/read_watch_win.h"

#include <deque>
#include <mutex>

namespace quarlin::test {
namespace {

// Never destroyed, because the reading thread may be in a hook while the watch ends.
struct State {
    std::mutex mutex;
    std::deque<ReadWatch::Answer> answers;
    DWORD pauseError = ERROR_SUCCESS;
    size_t readBytes = 0;
    size_t doneBytes = 0;
    size_t emptyReads = 0;
    std::vector<DWORD> pauses;
    bool allOfOneByte = true;
};

State& TheState() {
    static State& state = *new State;
    return state;
}

bool TakeAnswer(ReadWatch::Answer& answer) {
    State& state = TheState();
    const std::lock_guard held(state.mutex);
    if (state.answers.empty()) {
        return false;
    }
    answer = state.answers.front();
    state.answers.pop_front();
    return true;
}

BOOL WINAPI WatchedReadFile(HANDLE port, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    // The last error is part of what is watched: the thread gets it as the system, or the answer, leaves it.
    DWORD error = GetLastError();
    State& state = TheState();
    {
        const std::lock_guard held(state.mutex);
        state.doneBytes = state.readBytes;
        state.allOfOneByte = state.allOfOneByte && size == 1 && overlapped == nullptr;
    }
    ReadWatch::Answer answer{};
    BOOL result = FALSE;
    if (TakeAnswer(answer)) {
        *read = 0;
        result = answer.result;
        error = answer.error != ERROR_SUCCESS ? answer.error : error;
    } else {
        SetLastError(error);
        result = ReadFile(port, buffer, size, read, overlapped);
        error = GetLastError();
    }
    {
        const std::lock_guard held(state.mutex);
        state.readBytes += *read;
        state.emptyReads += *read == 0 ? 1 : 0;
    }
    SetLastError(error);
    return result;
}

void WINAPI WatchedSleep(DWORD milliseconds) {
    State& state = TheState();
    DWORD error = ERROR_SUCCESS;
    {
        const std::lock_guard held(state.mutex);
        state.pauses.push_back(milliseconds);
        error = state.pauseError;
    }
    Sleep(milliseconds);
    SetLastError(error);
}

}  // namespace

ReadWatch::ReadWatch() {
    State& state = TheState();
    {
        const std::lock_guard held(state.mutex);
        state.answers.clear();
        state.pauseError = ERROR_SUCCESS;
        state.readBytes = state.doneBytes = state.emptyReads = 0;
        state.pauses.clear();
        state.allOfOneByte = true;
    }
    readHook_ = std::make_unique<ImportHook>("kernel32.dll", "ReadFile", &WatchedReadFile);
    sleepHook_ = std::make_unique<ImportHook>("kernel32.dll", "Sleep", &WatchedSleep);
}

ReadWatch::~ReadWatch() = default;

void ReadWatch::AnswerNext(std::vector<Answer> answers) {
    const std::lock_guard held(TheState().mutex);
    TheState().answers.assign(answers.begin(), answers.end());
}

void ReadWatch::LeaveErrorInPauses(DWORD error) {
    const std::lock_guard held(TheState().mutex);
    TheState().pauseError = error;
}

size_t ReadWatch::DoneBytes() const {
    const std::lock_guard held(TheState().mutex);
    return TheState().doneBytes;
}

size_t ReadWatch::EmptyReads() const {
    const std::lock_guard held(TheState().mutex);
    return TheState().emptyReads;
}

std::vector<DWORD> ReadWatch::Pauses() const {
    const std::lock_guard held(TheState().mutex);
    return TheState().pauses;
}

bool ReadWatch::AllReadsOfOneByte() const {
    const std::lock_guard held(TheState().mutex);
    return TheState().allOfOneByte;
}

}  // namespace quarlin::test
