// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "failure.h"

#include <optional>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// One answer of the library: a text, nothing (it is not known), or the error that came instead.
struct Answer {
    std::optional<std::string> text;
    std::optional<LibraryError> error;
};

// A part of the report under its title and its JSON field.
struct InfoPart {
    const char* title;
    const char* field;
    Answer answer;
};

struct FamilyPresence {
    const char* title;
    const char* field;
    bool present;
};

// What `qlctl info` tells: about the library and the machine, and which device families this qlsdk.dll serves.
struct InfoReport {
    std::vector<InfoPart> parts;
    std::vector<FamilyPresence> families;
};

std::string InfoText(const InfoReport& report);
std::string InfoJson(const InfoReport& report);

}  // namespace quarlin::qlctl
