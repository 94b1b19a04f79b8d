// SPDX-License-Identifier: Apache-2.0
#include "uhf/arguments.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quarlin::sim {
namespace {

struct TagKey {
    const char* name;
    void (*read)(const std::string& value, TagSettings& tag);
};

constexpr std::array<TagKey, 8> kTagKeys = {{
    {"tid", [](const std::string& value, TagSettings& tag) { tag.tid = HexArgument(value); }},
    {"user", [](const std::string& value, TagSettings& tag) { tag.user = HexArgument(value); }},
    {"pc",
     [](const std::string& value, TagSettings& tag) {
         const auto pc = NumberOfHex(value);
         if (!pc || *pc > 0xFFFF) {
             throw CommandError("\"" + value + "\" is no protocol control word of four hexadecimal digits");
         }
         tag.pc = static_cast<std::uint16_t>(*pc);
     }},
    {"access_password",
     [](const std::string& value, TagSettings& tag) { tag.accessPassword = PasswordArgument(value); }},
    {"kill_password", [](const std::string& value, TagSettings& tag) { tag.killPassword = PasswordArgument(value); }},
    {"signal", [](const std::string& value, TagSettings& tag) { tag.signal = NumberArgument<std::int8_t>(value); }},
    {"power", [](const std::string& value, TagSettings& tag) { tag.power = NumberArgument<std::uint8_t>(value); }},
    {"write_power",
     [](const std::string& value, TagSettings& tag) { tag.writePower = NumberArgument<std::uint8_t>(value); }},
}};

constexpr std::string_view kLockPrefix = "lock_";

void ReadLock(const std::string& area, const std::string& state, TagSettings& tag) {
    const auto named = [](const std::string& name) { return [&name](const auto& row) { return row.first == name; }; };
    const auto knownArea = std::find_if(kLockAreas.begin(), kLockAreas.end(), named(area));
    if (knownArea == kLockAreas.end()) {
        throw CommandError("there is no lock \"" + area +
                           "\"; there are kill_password, access_password, epc, tid and user");
    }
    const auto knownState = std::find_if(kLockStates.begin(), kLockStates.end(), named(state));
    if (knownState == kLockStates.end()) {
        throw CommandError("\"" + state + "\" is none of unlocked, locked, always_unlocked and always_locked");
    }
    tag.Lock(knownArea->second) = knownState->second;
}

void ReadTagKey(const std::string& word, TagSettings& tag) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
        throw CommandError("\"" + word + "\" is not of the form KEY=VALUE");
    }
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    if (key.starts_with(kLockPrefix)) {
        ReadLock(key.substr(kLockPrefix.size()), value, tag);
        return;
    }
    const auto known = std::find_if(kTagKeys.begin(), kTagKeys.end(), [&](const TagKey& k) { return k.name == key; });
    if (known == kTagKeys.end()) {
        std::vector<std::string> names;
        for (const TagKey& k : kTagKeys) {
            names.emplace_back(k.name);
        }
        throw CommandError("a tag has no key \"" + key + "\"" + Suggestion(key, names));
    }
    known->read(value, tag);
}

}  // namespace

long long WholeNumberArgument(const std::string& word, long long least, long long most) {
    long long value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || value < least || value > most) {
        throw CommandError("\"" + word + "\" is no whole number from " + std::to_string(least) + " to " +
                           std::to_string(most));
    }
    return value;
}

std::uint8_t HexByteArgument(const std::string& word) {
    const auto value = NumberOfHex(word);
    if (!value || *value > 0xFF) {
        throw CommandError("\"" + word + "\" is no byte of one or two hexadecimal digits");
    }
    return static_cast<std::uint8_t>(*value);
}

Bytes HexArgument(const std::string& word) {
    const auto bytes = ParseHex(word);
    if (!bytes) {
        throw CommandError("\"" + word + "\" is no text of hexadecimal bytes");
    }
    return *bytes;
}

std::uint32_t PasswordArgument(const std::string& word) {
    const auto password = NumberOfHex(word);
    if (!password) {
        throw CommandError("\"" + word + "\" is no password of at most eight hexadecimal digits");
    }
    return *password;
}

TagSettings TagArguments(const Words& words) {
    TagSettings tag;
    tag.epc = HexArgument(words[1]);
    for (std::size_t i = 2; i < words.size(); ++i) {
        ReadTagKey(words[i], tag);
    }
    if (const auto problem = ProblemOf(tag)) {
        throw CommandError(*problem);
    }
    return tag;
}

}  // namespace quarlin::sim
