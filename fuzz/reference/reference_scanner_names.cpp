// SPDX-License-Identifier: Apache-2.0
#include "reference/reference_scanner_names.h"

#include <algorithm>
#include <limits>
#include <string>

namespace quarlin::reference {

int ReferenceEngineOfHidPath(const std::wstring& path) {
    std::wstring upper;
    for (const wchar_t c : path) {
        upper += c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
    }
    if (upper.find(L"VID_067E&PID_0801&COL02") != std::wstring::npos) {
        return 2;
    }
    return upper.find(L"VID_067E&PID_0809") != std::wstring::npos ? 3 : 0;
}

std::optional<std::int32_t> ReferencePortNumber(const std::wstring& name) {
    if (name.find(L"VID_067") == std::wstring::npos) {
        return std::nullopt;
    }
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name.compare(at, 4, L"(COM") != 0) {
            continue;
        }
        std::wstring digits;
        for (std::size_t i = at + 4; i < name.size() && name[i] >= L'0' && name[i] <= L'9'; ++i) {
            digits += name[i];
        }
        digits.erase(0, digits.empty() ? 0 : std::min(digits.find_first_not_of(L'0'), digits.size() - 1));
        if (digits.empty() || digits.size() > 10) {
            continue;
        }
        if (const long long number = std::stoll(digits); number <= std::numeric_limits<std::int32_t>::max()) {
            return static_cast<std::int32_t>(number);
        }
    }
    return std::nullopt;
}

int ReferenceModel(const std::wstring& name) {
    static const wchar_t* const kBeginnings[][2] = {
        {L"HXT7", L"HX-T7"}, {L"HXT8", L"HX-T8"}, {L"JR41", L"JR-41"}, {L"JR42", L"JR-42"}};
    int model = 0;
    for (int i = 0; i < 4; ++i) {
        for (const wchar_t* const beginning : kBeginnings[i]) {
            if (name.rfind(beginning, 0) == 0) {
                model = i + 1;
            }
        }
    }
    return model;
}

}  // namespace quarlin::reference
