// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarlin::qlctl {

// What the library shall do with the text of each scan. The numbers are the library's.
struct EditRule {
    enum Mode {
        kNone = 0,
        kReplace = 1,
        kInsert = 2,
        kDelete = 3
    };

    Mode mode = kNone;
    std::string target;
    std::string content;
    int start = 0;
    int end = 0;
};

// The library keeps none of these when it is uninitialised: each command that reads codes sets its own.
struct ScanSettings {
    std::string prefix;
    std::string suffix;
    bool isInside = false;  // prefix and suffix next to the text, inside the engine's own fields
    EditRule edit;
    bool hasSound = false;
    std::string soundFile;  // empty: the library's own choice
};

// Rules as the command line writes them, with escapes as Unescaped knows them. Nothing when a text is not that.
// "A=B": each A becomes B. The first equals sign divides.
std::optional<EditRule> ParseReplace(std::string_view text);
// "N:TEXT": TEXT behind character N; of a negative N, with so many characters behind it.
std::optional<EditRule> ParseInsert(std::string_view text);
// "TEXT", "TEXT:START:END": each TEXT goes, between two positions.
std::optional<EditRule> ParseDelete(std::string_view text);

// "replace A by AA", "insert - behind character 2", "delete 0 from behind character 1 to the end".
std::string RuleText(const EditRule& rule);

}  // namespace quarlin::qlctl
