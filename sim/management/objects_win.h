// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <windows.h>

#include <wbemcli.h>

namespace qlsim {

// A locator with one reference; null when memory is short.
IWbemLocator* MakeLocator();

}  // namespace qlsim
