// SPDX-License-Identifier: Apache-2.0
#include "core/smart_critical_win.h"

namespace quarlin {

CSmartCritical::CSmartCritical(Setup setup) {
    constexpr DWORD kNoSpin = 0;
    switch (setup) {
        case Setup::kNoDebugInfo:
            initialized_ = InitializeCriticalSectionEx(&section_, kNoSpin, CRITICAL_SECTION_NO_DEBUG_INFO);
            break;
        case Setup::kPlain:
            initialized_ = InitializeCriticalSectionEx(&section_, kNoSpin, 0);
            break;
        case Setup::kUnchecked:
            InitializeCriticalSection(&section_);
            initialized_ = 1;
            break;
    }
}

CSmartCritical::~CSmartCritical() {
    if (initialized_ != 0) {
        DeleteCriticalSection(&section_);
        initialized_ = 0;
        lockCount_ = 0;
    }
}

}  // namespace quarlin
