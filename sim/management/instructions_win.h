// SPDX-License-Identifier: Apache-2.0
// What the environment tells the management stand-in to do.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "settings/settings_win.h"

namespace qlsim {

// The setting of one step in QLSIM_MANAGEMENT, a list such as "connect=0x80041003;next=none".
class Instruction {
  public:
    explicit Instruction(const wchar_t* step);

    // Whether the setting is this keyword; asked for every keyword that the step has.
    bool Is(const wchar_t* keyword) const;
    // Whether the step ends at once with Result(): a number was given, or a word that the step does not know.
    bool Ends() const { return given_; }
    HRESULT Result() const;

  private:
    bool given_ = false;
    SettingValue value_ = {};
};

// The machine's model: QLSIM_MODEL, else the registry, else "JR-56SIM". Null when memory is short.
BSTR AllocateModel();

}  // namespace qlsim
