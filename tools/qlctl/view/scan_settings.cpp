// SPDX-License-Identifier: Apache-2.0
#include "view/scan_settings.h"

#include "view/byte_text.h"

#include <charconv>

namespace quarlin::qlctl {
namespace {

std::optional<int> Number(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// Takes ":NUMBER" off the end of a text; leaves it as it is when there is none.
std::optional<int> TakeLastNumber(std::string_view& text) {
    const size_t colon = text.rfind(':');
    const auto number = colon == std::string_view::npos ? std::nullopt : Number(text.substr(colon + 1));
    if (number) {
        text = text.substr(0, colon);
    }
    return number;
}

// A positive position counts from the start, a negative one is followed by so many characters.
std::string Place(int position) {
    return position > 0 ? "character " + std::to_string(position)
                        : "the character with " + std::to_string(-static_cast<long long>(position)) + " behind it";
}

}  // namespace

std::optional<EditRule> ParseReplace(std::string_view text) {
    const size_t divider = text.find('=');
    if (divider == std::string_view::npos) {
        return std::nullopt;
    }
    const auto target = Unescaped(text.substr(0, divider));
    const auto content = Unescaped(text.substr(divider + 1));
    if (!target || !content || target->empty() || content->empty()) {
        return std::nullopt;
    }
    return EditRule{EditRule::kReplace, *target, *content};
}

std::optional<EditRule> ParseInsert(std::string_view text) {
    const size_t divider = text.find(':');
    if (divider == std::string_view::npos) {
        return std::nullopt;
    }
    const auto position = Number(text.substr(0, divider));
    const auto content = Unescaped(text.substr(divider + 1));
    if (!position || *position == 0 || !content || content->empty()) {
        return std::nullopt;
    }
    return EditRule{EditRule::kInsert, "", *content, *position};
}

std::optional<EditRule> ParseDelete(std::string_view text) {
    EditRule rule;
    rule.mode = EditRule::kDelete;
    std::string_view rest = text;
    const auto end = TakeLastNumber(rest);
    const auto start = end ? TakeLastNumber(rest) : std::nullopt;
    if (start) {
        rule.start = *start;
        rule.end = *end;
    }
    const auto target = Unescaped(start ? rest : text);
    if (!target || target->empty()) {
        return std::nullopt;
    }
    rule.target = *target;
    return rule;
}

std::string RuleText(const EditRule& rule) {
    switch (rule.mode) {
        case EditRule::kReplace:
            return "replace " + Escaped(rule.target) + " by " + Escaped(rule.content);
        case EditRule::kInsert:
            return "insert " + Escaped(rule.content) + " behind " + Place(rule.start);
        case EditRule::kDelete:
            return "delete " + Escaped(rule.target) + " from " +
                   (rule.start < 1 ? "the start" : "behind " + Place(rule.start)) + " to " +
                   (rule.end == 0 ? "the end" : Place(rule.end));
        case EditRule::kNone:
            break;
    }
    return "none";
}

}  // namespace quarlin::qlctl
