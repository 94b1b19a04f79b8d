// SPDX-License-Identifier: Apache-2.0
#include "view/barcode_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;

BarcodeScan Scan(const std::string& symbologyId, const std::string& data) {
    return {0, {symbologyId.begin(), symbologyId.end()}, {data.begin(), data.end()}};
}

TEST(ScannerTable, ShowsNamesAndKinds) {
    EXPECT_EQ(ScannerTable({{0, "Intermec EA15/EA21", true, 2, 1}}),
              "Index  Name                Kind\n"
              "0      Intermec EA15/EA21  built in\n");
    EXPECT_EQ(ScannerTable({{0, "Barcode Reader", false, 0, 0}}),
              "Index  Name            Kind\n"
              "0      Barcode Reader  external\n");
    EXPECT_EQ(ScannerTable({}), "no barcode scanner is there\n");
}

TEST(ScannersJson, IsOneObject) {
    EXPECT_EQ(Json::parse(ScannersJson({{0, "Intermec EA15/EA21", true, 2, 1}})), Json::parse(R"({"scanners": [
        {"index": 0, "name": "Intermec EA15/EA21", "built_in": true, "link_kind": 2, "link_flag": 1}]})"));
    EXPECT_EQ(ScannersJson({}), "{\"scanners\":[]}\n");
}

TEST(ScanText, ShowsSymbologyTextAndBytes) {
    EXPECT_EQ(ScanText(Scan({"]E0\0\0", 5}, "4006381333931"), 1),
              "Scan 1  EAN-13, UPC-A or UPC-E (]E0)\n"
              "  Text    4006381333931\n"
              "  Bytes   34303036333831333333393331\n");
    EXPECT_EQ(ScanText(Scan("]C1", "01\x1D"), 12),
              "Scan 12  GS1-128 (]C1), FNC1 in the first position\n"
              "  Text    01\\x1D\n"
              "  Bytes   30311D\n");
}

TEST(ScanText, SaysWhenTheSymbologyIsNotKnown) {
    EXPECT_TRUE(ScanText(Scan("", "1"), 1).starts_with("Scan 1  no symbology identifier\n"));
    EXPECT_TRUE(ScanText(Scan("]?0", "1"), 1).starts_with("Scan 1  unknown symbology (]?0)\n"));
}

TEST(ScanText, WrapsTheBytesOfALongCode) {
    EXPECT_EQ(ScanText(Scan("]Q1", std::string(33, 'A')), 1),
              "Scan 1  QR Code (]Q1)\n"
              "  Text    AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\n"
              "  Bytes   4141414141414141414141414141414141414141414141414141414141414141\n"
              "          41\n");
}

TEST(ScanJson, HasTextBytesAndSymbology) {
    const std::string line = ScanJson(Scan({"]C1\0\0", 5}, "01\x1D"), 3);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(Json::parse(line), Json::parse(R"({"scan": 3, "device": 0, "text": "01\u001d", "data_hex": "30311D",
        "symbology_id": "]C1", "symbology_id_hex": "5D43310000", "symbology": "GS1-128",
        "symbology_detail": "FNC1 in the first position"})"));
}

TEST(ScanJson, HasNullsWhereTheEngineGaveNothing) {
    EXPECT_EQ(Json::parse(ScanJson(Scan("", "\xFC"), 1)), Json::parse(R"({"scan": 1, "device": 0, "text": "\ufffd",
        "data_hex": "FC", "symbology_id": null, "symbology_id_hex": null, "symbology": null,
        "symbology_detail": null})"));
}

TEST(EditReport, ShowsTheCodeBeforeAndAfter) {
    const EditRule rule = *ParseReplace("A=AA");
    EXPECT_EQ(EditText(rule, Scan("]C0", "ABA"), Scan("]C0", "AABAA")),
              "Edit          replace A by AA\n"
              "Symbology     Code 128 (]C0)\n"
              "Before        ABA\n"
              "After         AABAA\n");
    const Json json = Json::parse(EditJson(rule, Scan("]C0", "ABA"), Scan("]C0", "AABAA")));
    EXPECT_EQ(json["edit"],
              Json::parse(R"({"mode": "replace", "target": "A", "content": "AA", "start": 0, "end": 0})"));
    EXPECT_EQ(json["before"]["text"], "ABA");
    EXPECT_EQ(json["after"]["data_hex"], "4141424141");
}

TEST(SymbologyChanges, ShowEachWithItsError) {
    const std::vector<SymbologyChange> changes{
        {FindSymbology("QR"), {}}, {FindSymbology("9"), LibraryError{QLERR_OP_UNSUPPORTED, "Not Supported."}}};
    EXPECT_EQ(ChangesText(changes, true),
              "QR                     enabled\n"
              "EAN_128_Irregular      error 4 (QLERR_OP_UNSUPPORTED): Not Supported.\n");
    EXPECT_EQ(Json::parse(ChangesJson(changes, false)), Json::parse(R"({"symbologies": [
        {"value": 37, "name": "QR", "enabled": false, "error": null},
        {"value": 9, "name": "EAN_128_Irregular", "enabled": null,
         "error": {"code": 4, "name": "QLERR_OP_UNSUPPORTED", "message": "Not Supported."}}]})"));
}

TEST(Firmware, IsShownWithTheScanner) {
    EXPECT_EQ(FirmwareText({"Intermec EA30", "1.02"}), "Scanner       Intermec EA30\nFirmware      1.02\n");
    EXPECT_EQ(FirmwareText({"Intermec EA30", ""}), "Scanner       Intermec EA30\nFirmware      (empty)\n");
    EXPECT_EQ(FirmwareJson({"Intermec EA30", "1.02"}), "{\"scanner\":\"Intermec EA30\",\"firmware\":\"1.02\"}\n");
}

TEST(Trigger, TellsWhatTheScannerTellsAndWhatWasSet) {
    EXPECT_EQ(TriggerText({true, {}}), "Hardware      on\nMode          the scanner does not tell\n");
    EXPECT_EQ(TriggerText({false, 2}), "Hardware      off\nMode          set to 2\n");
    EXPECT_EQ(TriggerJson({true, {}}), "{\"hardware_trigger\":true,\"mode_set\":null}\n");
    EXPECT_EQ(TriggerJson({false, 0}), "{\"hardware_trigger\":false,\"mode_set\":0}\n");
}

}  // namespace
}  // namespace quarlin::qlctl
