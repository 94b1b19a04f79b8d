// SPDX-License-Identifier: Apache-2.0
#include "console/process_end.h"

#include <windows.h>
#include <cstdlib>

namespace quarlin::qlctl {

void EndProcessAtOnce(int status) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::abort();
}

}  // namespace quarlin::qlctl
