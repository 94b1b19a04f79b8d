// SPDX-License-Identifier: Apache-2.0
#include "console/arguments.h"

#include <windows.h>

#include <shellapi.h>  // after windows.h, which it needs
#include <memory>

namespace quarlin::qlctl {
namespace {

struct LocalFreePolicy {
    void operator()(void* const memory) const { LocalFree(memory); }
};

std::string ToUtf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), size, nullptr, nullptr);
    narrow.pop_back();  // the terminator
    return narrow;
}

}  // namespace

std::vector<std::string> Utf8Arguments() {
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalFreePolicy> all(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int at = 1; all && at < count; ++at) {
        arguments.push_back(ToUtf8(all.get()[at]));
    }
    return arguments;
}

}  // namespace quarlin::qlctl
