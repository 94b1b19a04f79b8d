// SPDX-License-Identifier: Apache-2.0
#include "gps/port_watch_win.h"

#include <algorithm>
#include <stdexcept>

namespace quarlin::test {
namespace {

constexpr const char* kSystemLibrary = "kernel32.dll";
PortWatch* watch = nullptr;

// Notes the call. True when it is to fail.
bool Fails(const char* call) {
    watch->calls.emplace_back(call);
    if (watch->failing != call) {
        return false;
    }
    SetLastError(ERROR_GEN_FAILURE);
    return true;
}

std::string NameOf(HANDLE handle) {
    const auto isResult = [handle](const auto& made) { return made.result == handle; };
    if (std::any_of(watch->opened.begin(), watch->opened.end(), isResult)) {
        return " port";
    }
    return std::any_of(watch->threads.begin(), watch->threads.end(), isResult) ? " thread" : "";
}

HANDLE WINAPI WatchedCreateFile(const char* name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                                DWORD disposition, DWORD flags, HANDLE templateFile) {
    HANDLE result = INVALID_HANDLE_VALUE;
    if (!Fails("CreateFileA")) {
        result = CreateFileA(name, access, sharing, security, disposition, flags, templateFile);
    }
    const DWORD error = GetLastError();
    watch->opened.push_back({name, access, sharing, security, disposition, flags, templateFile, result});
    SetLastError(error);
    return result;
}

BOOL WINAPI WatchedGetCommState(HANDLE port, DCB* state) {
    if (Fails("GetCommState")) {
        return FALSE;
    }
    if (watch->toldState) {
        *state = *watch->toldState;
        return TRUE;
    }
    return GetCommState(port, state);
}

BOOL WINAPI WatchedSetCommState(HANDLE port, DCB* state) {
    watch->states.push_back(*state);
    if (Fails("SetCommState")) {
        return FALSE;
    }
    return watch->toldState ? TRUE : SetCommState(port, state);
}

BOOL WINAPI WatchedSetCommTimeouts(HANDLE port, COMMTIMEOUTS* timeouts) {
    watch->timeouts.push_back(*timeouts);
    return Fails("SetCommTimeouts") ? FALSE : SetCommTimeouts(port, timeouts);
}

BOOL WINAPI WatchedPurgeComm(HANDLE port, DWORD flags) {
    watch->purges.push_back(flags);
    return Fails("PurgeComm") ? FALSE : PurgeComm(port, flags);
}

HANDLE WINAPI WatchedCreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE procedure,
                                  void* argument, DWORD flags, DWORD* id) {
    HANDLE result = nullptr;
    if (!Fails("CreateThread")) {
        result = CreateThread(security, stackSize, procedure, argument, flags, id);
    }
    watch->threads.push_back(
        {security, stackSize, procedure != nullptr, argument != nullptr, flags, id != nullptr, result});
    return result;
}

BOOL WINAPI WatchedCloseHandle(HANDLE handle) {
    watch->calls.push_back("CloseHandle" + NameOf(handle));
    return CloseHandle(handle);
}

DWORD WINAPI WatchedWait(HANDLE handle, DWORD milliseconds) {
    watch->calls.push_back("WaitForSingleObject" + NameOf(handle));
    watch->waits.push_back(milliseconds);
    return WaitForSingleObject(handle, milliseconds);
}

}  // namespace

PortWatch::PortWatch() {
    if (watch != nullptr) {
        throw std::logic_error("one port watch at a time");
    }
    watch = this;
    const auto add = [this](const char* function, auto* replacement) {
        hooks_.push_back(std::make_unique<ImportHook>(kSystemLibrary, function, replacement));
    };
    add("CreateFileA", &WatchedCreateFile);
    add("GetCommState", &WatchedGetCommState);
    add("SetCommState", &WatchedSetCommState);
    add("SetCommTimeouts", &WatchedSetCommTimeouts);
    add("PurgeComm", &WatchedPurgeComm);
    add("CreateThread", &WatchedCreateThread);
    add("CloseHandle", &WatchedCloseHandle);
    add("WaitForSingleObject", &WatchedWait);
}

PortWatch::~PortWatch() {
    hooks_.clear();
    watch = nullptr;
}

}  // namespace quarlin::test
