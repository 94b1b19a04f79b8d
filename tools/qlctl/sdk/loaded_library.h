// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace quarlin::qlctl {

// Where the qlsdk.dll that this process runs with lies, UTF-8.
std::string LoadedLibraryPath();

// Whether that qlsdk.dll exports a function of this name.
bool LoadedLibraryExports(const char* function);

}  // namespace quarlin::qlctl
