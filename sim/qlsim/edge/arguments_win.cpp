// SPDX-License-Identifier: Apache-2.0
#include "edge/arguments_win.h"

#include <windows.h>

#include <shellapi.h>  // after windows.h, which it needs

#include <memory>

#include "edge/system_error_win.h"

namespace quarlin::sim {

std::vector<std::string> ReversedArguments() {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> list(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
    std::vector<std::string> arguments;
    for (int i = count - 1; i > 0; --i) {
        arguments.push_back(Narrow(list.get()[i]));
    }
    return arguments;
}

}  // namespace quarlin::sim
