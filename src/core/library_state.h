// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace quarlin {

// What the library owns from the moment a process loads it until the process lets it go. Load and unload run under the
// system's loader lock, before and after everything else. All handles are the system's, untyped here so that families
// need no system header for them.

// Reads the EnableLog setting, opens the log file when it asks for one, and creates the emulator link's event. Fails
// silently: nothing here can keep the library from loading.
void LoadLibraryState(void* moduleHandle);
void UnloadLibraryState();

// The library's own module instance.
void* ModuleHandle();

// Auto-reset event of the barcode emulator link.
void* EmulatorEvent();

}  // namespace quarlin
