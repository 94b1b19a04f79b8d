// SPDX-License-Identifier: Apache-2.0
#include "view/info_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

InfoReport SampleReport() {
    return {{{"SDK version", "sdk_version", {"3.0.1000.0", {}}},
             {"Model", "management_model", {{}, LibraryError{QLERR_INTERNAL_ERROR, "Could not connect\r\nto it"}}},
             {"Product", "firmware_product", {"", {}}},
             {"GPS receiver", "gps_receiver", {}}},
            {{"Barcode", "barcode", false}, {"GPS", "gps", true}}};
}

TEST(InfoText, ShowsAnErrorInPlaceOfItsPartAndTheRest) {
    EXPECT_EQ(InfoText(SampleReport()),
              "SDK version   3.0.1000.0\n"
              "Model         error 5 (QLERR_INTERNAL_ERROR): Could not connect; to it\n"
              "Product       (empty)\n"
              "GPS receiver  not known\n"
              "Families\n"
              "  Barcode     not in this library\n"
              "  GPS         present\n");
}

TEST(InfoJson, KeepsAnErrorsTextAsItIs) {
    const std::string line = InfoJson(SampleReport());
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(nlohmann::json::parse(line), nlohmann::json::parse(R"({
        "sdk_version": "3.0.1000.0", "management_model": null, "firmware_product": "", "gps_receiver": null,
        "families": {"barcode": false, "gps": true},
        "errors": {"management_model":
            {"code": 5, "name": "QLERR_INTERNAL_ERROR", "message": "Could not connect\r\nto it"}}})"));
}

TEST(InfoJson, ReplacesBytesThatAreNotUtf8) {
    const InfoReport report{{{"Model", "management_model", {"JR\xFF", {}}}}, {}};
    EXPECT_EQ(nlohmann::json::parse(InfoJson(report))["management_model"], "JR\xEF\xBF\xBD");
}

}  // namespace
}  // namespace quarlin::qlctl
