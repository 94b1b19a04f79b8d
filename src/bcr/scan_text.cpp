// SPDX-License-Identifier: Apache-2.0
#include "bcr/scan_text.h"

namespace quarlin::bcr {

namespace {

enum Field : std::size_t {
    kFirst,
    kSecond,
    kScanned,
    kFourth
};

}  // namespace

std::string HoneywellText(std::string_view scanned, const TextSettings& settings) {
    return settings.prefix.text + Edit(std::string(scanned), settings.edit) + settings.suffix.text;
}

std::string IntermecText(const ExtendedData& scan, const TextSettings& settings) {
    const auto& [prefix, suffix, edit] = settings;
    std::string text;
    if (prefix.asTop != 0) {
        text.append(prefix.text).append(scan.fields[kFirst]);
    } else {
        text.append(scan.fields[kFirst]).append(prefix.text);
    }
    text.append(scan.fields[kSecond]).append(Edit(std::string(scan.fields[kScanned]), edit));
    if (suffix.asTop != 0) {
        text.append(scan.fields[kFourth]).append(suffix.text);
    } else {
        text.append(suffix.text).append(scan.fields[kFourth]);
    }
    return text;
}

}  // namespace quarlin::bcr
