// SPDX-License-Identifier: Apache-2.0
#include "view/info_report.h"

#include "view/error_json.h"
#include "view/json_line.h"
#include "view/text.h"

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::ordered_json;

std::string AnswerText(const Answer& answer) {
    if (answer.error) {
        return Describe(*answer.error);
    }
    if (!answer.text) {
        return "not known";
    }
    return answer.text->empty() ? "(empty)" : *answer.text;
}

}  // namespace

std::string InfoText(const InfoReport& report) {
    std::string text;
    for (const InfoPart& part : report.parts) {
        text += Row(part.title, AnswerText(part.answer));
    }
    text += "Families\n";
    for (const FamilyPresence& family : report.families) {
        text += Row(std::string("  ") + family.title, family.present ? "present" : "not in this library");
    }
    return text;
}

std::string InfoJson(const InfoReport& report) {
    Json object = Json::object();
    Json errors = Json::object();
    for (const InfoPart& part : report.parts) {
        object[part.field] = part.answer.text ? Json(*part.answer.text) : Json(nullptr);
        if (const auto& error = part.answer.error) {
            errors[part.field] = ErrorJson(*error);
        }
    }
    Json families = Json::object();
    for (const FamilyPresence& family : report.families) {
        families[family.field] = family.present;
    }
    object["families"] = std::move(families);
    object["errors"] = std::move(errors);
    return JsonLine(object);
}

}  // namespace quarlin::qlctl
