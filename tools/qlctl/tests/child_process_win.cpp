// SPDX-License-Identifier: Apache-2.0
#include "child_process_win.h"

#include <gtest/gtest.h>
#include <array>

namespace quarlin::qlctl {

PipeReader::PipeReader(Reading reading) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inheritable, 0));
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    readEnd_.reset(readEnd);
    writeEnd_.reset(writeEnd);
    if (reading == Reading::kAll) {
        thread_ = std::thread(&PipeReader::Read, this);
    } else {
        readEnd_.reset();
    }
}

PipeReader::~PipeReader() {
    Finish();
}

void PipeReader::Read() {
    std::array<char, 4096> piece;
    DWORD size = 0;
    while (ReadFile(readEnd_.get(), piece.data(), static_cast<DWORD>(piece.size()), &size, nullptr) && size > 0) {
        const std::lock_guard lock(mutex_);
        text_.append(piece.data(), size);
        grown_.notify_all();
    }
    readEnd_.reset();
}

bool PipeReader::WaitFor(const std::string& text, std::chrono::milliseconds atMost) {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, atMost, [&] { return text_.find(text) != std::string::npos; });
}

std::string PipeReader::Finish() {
    CloseWriteEnd();
    if (thread_.joinable()) {
        thread_.join();
    }
    return text_;
}

std::wstring QlctlPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    for (int up = 0; up < 2; ++up) {
        path.resize(path.rfind(L'\\'));
    }
    return path + L"\\bin\\qlctl.exe";
}

namespace {

std::wstring ToWide(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                         static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(size));
    return wide;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& arguments, PipeReader::Reading output) : out_(output) {
    Start(arguments, out_.WriteEnd());
}

ChildProcess::ChildProcess(const std::string& arguments, HANDLE output) {
    Start(arguments, output);
}

void ChildProcess::Start(const std::string& arguments, HANDLE output) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = err_.WriteEnd();
    std::wstring commandLine = L"qlctl " + ToWide(arguments);
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(QlctlPath().c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &startup, &process))
        << GetLastError();
    if (process.hThread != nullptr) {
        CloseHandle(process.hThread);
    }
    process_.reset(process.hProcess);
    out_.CloseWriteEnd();
    err_.CloseWriteEnd();
}

ChildProcess::~ChildProcess() {
    if (process_) {
        TerminateProcess(process_.get(), 99);
    }
}

bool ChildProcess::HasEndedWithin(std::chrono::milliseconds time) const {
    return WaitForSingleObject(process_.get(), static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}

ChildResult ChildProcess::Finish() {
    ChildResult result;
    if (HasEndedWithin(kDeadline)) {
        DWORD status = 0;
        GetExitCodeProcess(process_.get(), &status);
        result.exitStatus = static_cast<int>(status);
    } else {
        TerminateProcess(process_.get(), 99);
    }
    result.out = out_.Finish();
    result.err = err_.Finish();
    return result;
}

ChildResult Qlctl(const std::string& arguments) {
    return ChildProcess(arguments).Finish();
}

}  // namespace quarlin::qlctl
