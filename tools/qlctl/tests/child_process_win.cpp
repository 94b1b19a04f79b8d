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
    m_readEnd.reset(readEnd);
    m_writeEnd.reset(writeEnd);
    if (reading == Reading::kAll) {
        m_thread = std::thread(&PipeReader::Read, this);
    } else {
        m_readEnd.reset();
    }
}

PipeReader::~PipeReader() {
    Finish();
}

void PipeReader::Read() {
    std::array<char, 4096> piece;
    DWORD size = 0;
    while (ReadFile(m_readEnd.get(), piece.data(), static_cast<DWORD>(piece.size()), &size, nullptr) && size > 0) {
        const std::lock_guard lock(m_mutex);
        m_text.append(piece.data(), size);
        m_grown.notify_all();
    }
    m_readEnd.reset();
}

bool PipeReader::WaitFor(const std::string& text, std::chrono::milliseconds atMost) {
    std::unique_lock lock(m_mutex);
    return m_grown.wait_for(lock, atMost, [&] { return m_text.find(text) != std::string::npos; });
}

std::string PipeReader::Finish() {
    CloseWriteEnd();
    if (m_thread.joinable()) {
        m_thread.join();
    }
    return m_text;
}

std::wstring QlctlPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    for (int up = 0; up < 2; ++up) {
        path.resize(path.rfind(L'\\'));
    }
    return path + L"\\bin\\qlctl.exe";
}

ChildProcess::ChildProcess(const std::string& arguments, PipeReader::Reading output) : m_out(output) {
    Start(arguments, m_out.WriteEnd());
}

ChildProcess::ChildProcess(const std::string& arguments, HANDLE output) {
    Start(arguments, output);
}

void ChildProcess::Start(const std::string& arguments, HANDLE output) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = m_err.WriteEnd();
    std::wstring commandLine = L"qlctl " + std::wstring(arguments.begin(), arguments.end());
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(QlctlPath().c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                               &startup, &process))
        << GetLastError();
    if (process.hThread != nullptr) {
        CloseHandle(process.hThread);
    }
    m_process.reset(process.hProcess);
    m_out.CloseWriteEnd();
    m_err.CloseWriteEnd();
}

ChildProcess::~ChildProcess() {
    if (m_process) {
        TerminateProcess(m_process.get(), 99);
    }
}

bool ChildProcess::HasEndedWithin(std::chrono::milliseconds time) const {
    return WaitForSingleObject(m_process.get(), static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}

ChildResult ChildProcess::Finish() {
    ChildResult result;
    if (HasEndedWithin(kDeadline)) {
        DWORD status = 0;
        GetExitCodeProcess(m_process.get(), &status);
        result.exitStatus = static_cast<int>(status);
    } else {
        TerminateProcess(m_process.get(), 99);
    }
    result.out = m_out.Finish();
    result.err = m_err.Finish();
    return result;
}

ChildResult Qlctl(const std::string& arguments) {
    return ChildProcess(arguments).Finish();
}

}  // namespace quarlin::qlctl
