// SPDX-License-Identifier: Apache-2.0
// Failures of the operating system underneath: how they read, and what happens when the system has no words for them.
#include <quarlin/quarlin.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <cstdio>
#include <string>

#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/machine_state_win.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kProbe = "Failed to check COM port availability!";

// The error that the port provider of this process gives for a port.
class PortProviderError : EnvironmentGuard {
  public:
    PortProviderError(int port, const std::wstring& error)
        : EnvironmentGuard(L"QLSIM_PORT_PROVIDER", L"COM" + std::to_wstring(port) + L"=error:" + error) {}
};

class SystemFailure : public ::testing::TestWithParam<DWORD> {};

TEST_P(SystemFailure, ReadsContextCodeAndTheSystemsText) {
    const PortProviderError provider(5, std::to_wstring(GetParam()));
    EXPECT_FAILURE(QLGPS_Initialize(5), QLERR_INTERNAL_ERROR, Win32Message(kProbe, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Codes, SystemFailure,
                         ::testing::Values(ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_GEN_FAILURE,
                                           ERROR_INSUFFICIENT_BUFFER, ERROR_NO_MORE_ITEMS, ERROR_INVALID_ENVIRONMENT),
                         [](const auto& test) { return std::to_string(test.param); });

TEST(SystemFailureText, IsExactToTheLastCharacter) {
    const PortProviderError provider(5, L"0x5");
    ASSERT_EQ(QLGPS_Initialize(5), QLERR_INTERNAL_ERROR);
    const Failure failure = FetchLastError();
    const std::string head = "Failed to check COM port availability!\nWin32 Error 0x00000005: ";
    ASSERT_GT(failure.text.size(), head.size() + 2);
    EXPECT_EQ(failure.text.substr(0, head.size()), head);
    // The system's text keeps its own line end.
    EXPECT_EQ(failure.text.substr(failure.text.size() - 2), "\r\n");
}

struct FormatCall {
    DWORD flags;
    DWORD code;
    DWORD language;
};
FormatCall lastFormat;
void* allocated;
int freed;
// Two, three and four bytes in UTF-8.
constexpr wchar_t kForeignText[] = L"Zugriff verweigert: \x00E4 \x20AC \xD83D\xDEF0\r\n";

DWORD WINAPI FormatForeignText(DWORD flags, LPCVOID, DWORD code, DWORD language, LPWSTR buffer, DWORD, va_list*) {
    lastFormat = {flags, code, language};
    allocated = LocalAlloc(LMEM_FIXED, sizeof(kForeignText));
    CopyMemory(allocated, kForeignText, sizeof(kForeignText));
    CopyMemory(buffer, &allocated, sizeof(allocated));
    return ARRAYSIZE(kForeignText) - 1;
}

HLOCAL WINAPI CountFree(HLOCAL memory) {
    freed += memory == allocated ? 1 : 0;
    return LocalFree(memory);
}

TEST(SystemFailureText, IsAskedForInTheUsersLanguageAndConvertedToUtf8) {
    const PortProviderError provider(5, L"5");
    const ImportHook format("KERNEL32.dll", "FormatMessageW", &FormatForeignText);
    const ImportHook release("KERNEL32.dll", "LocalFree", &CountFree);
    EXPECT_FAILURE(QLGPS_Initialize(5), QLERR_INTERNAL_ERROR,
                   "Failed to check COM port availability!\nWin32 Error 0x00000005: "
                   "Zugriff verweigert: \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x9B\xB0\r\n");
    EXPECT_EQ(lastFormat.flags,
              DWORD{FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS});
    EXPECT_EQ(lastFormat.code, DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(lastFormat.language, DWORD{MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT)});
    EXPECT_EQ(freed, 1);
}

// What the system leaves when it has no text for the code.
DWORD ErrorOfFormatMessage(DWORD code) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    return length == 0 ? GetLastError() : ERROR_SUCCESS;
}

// Prints what came of the call on standard error: standard output is the library's here.
QUARLIN_CHILD_MODE(probe_with_nameless_error) {
    const QLerr result = QLGPS_Initialize(5);
    const Failure left = FetchLastError();
    int devices = -1;
    QLGPS_GetGpsDevices(&devices);
    std::fprintf(stderr, "%d|%d|%s|%d", static_cast<int>(result), static_cast<int>(left.code), left.text.c_str(),
                 devices);
    return 0;
}

TEST(SystemFailureWithoutText, IsPrintedAndTheCallGoesOn) {
    ASSERT_FALSE(HasSystemText(0xE0001234));
    std::array<char, 64> diagnostic{};
    std::snprintf(diagnostic.data(), diagnostic.size(), "Error in FormatMessage: %lx\n",
                  ErrorOfFormatMessage(0xE0001234));

    const ChildResult child =
        RunChild("probe_with_nameless_error", {{L"QLSIM_PORT_PROVIDER", L"COM5=error:0xE0001234"}});
    EXPECT_EQ(child.exitCode, 0U);
    EXPECT_EQ(child.out, diagnostic.data());
    // The probe goes on with an empty answer, which is no serial port.
    EXPECT_EQ(child.err, "1|1|Incorrect COM port|0");
}

TEST(SystemFailureWithoutText, PrintsTheErrorOfFormatMessageInLowerCaseHexadecimal) {
    // 0x13d, that is 317: no message with this number.
    EXPECT_EQ(ErrorOfFormatMessage(0xE0001234), DWORD{ERROR_MR_MID_NOT_FOUND});
    const ChildResult child =
        RunChild("probe_with_nameless_error", {{L"QLSIM_PORT_PROVIDER", L"COM5=error:0xE0001234"}});
    EXPECT_EQ(child.out, "Error in FormatMessage: 13d\n");
}

}  // namespace
}  // namespace quarlin::test
