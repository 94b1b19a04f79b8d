// SPDX-License-Identifier: Apache-2.0
#include "child_process_win.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quarlin::qlctl {
namespace {

using Json = nlohmann::json;

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class UsageError : public testing::TestWithParam<const char*> {};

TEST_P(UsageError, EndsWithOneAndPointsToTheHelp) {
    const ChildResult result = Qlctl(GetParam());
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.rfind("qlctl: ", 0), 0U) << result.err;
    EXPECT_TRUE(Contains(result.err, "--help")) << result.err;
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, UsageError,
    testing::Values("", "gps", "info --port 3", "gps status --port x", "gps status --port 99999999999",
                    "gps status --count 0", "gps status --timeout -1", "gps status --interval 0",
                    "gps watch --redraw often", "gps status extra", "device", "light timer", "light timer 0",
                    "card watch --count 0", "card list --show-pan", "rfid read --bank bank", "rfid read",
                    "rfid write --bank user --data CAF", "rfid write --bank user --data CAFE01", "rfid kill --yes",
                    "rfid kill --password 12345678", "rfid lock 1 --yes", "rfid kill --password 123456789 --yes",
                    "rfid query --q x", "barcode", "barcode watch --count 0", "barcode watch --for -1",
                    "barcode watch --replace A", "barcode watch --replace A=", "barcode watch --insert 0:x",
                    "barcode watch --delete \"\"", "barcode watch --replace A=B --delete C",
                    "barcode watch --prefix \\q", "barcode watch --suffix \"\"", "barcode edit",
                    "barcode edit replace A", "barcode edit insert x -", "barcode symbology enable",
                    "barcode symbology enable QR nothing", "barcode trigger --hardware maybe",
                    "barcode trigger --mode x", "barcode list extra"));

class Help : public testing::TestWithParam<const char*> {};

TEST_P(Help, HasExamplesAndTheExitStatuses) {
    const std::string command = GetParam();
    const ChildResult result = Qlctl(command + " --help");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(Contains(result.out, "Examples:")) << result.out;
    EXPECT_TRUE(Contains(result.out, "  qlctl " + command)) << result.out;
    if (command.empty()) {
        EXPECT_TRUE(Contains(result.out, "   6  the device sent nothing in time")) << result.out;
        EXPECT_TRUE(Contains(result.out, "  10  the output could not be written")) << result.out;
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, Help,
                         testing::Values("", "info", "gps", "gps status", "gps satellites", "gps watch", "device",
                                         "device list", "device battery", "light", "light on", "light off",
                                         "light timer", "light status", "card", "card list", "card watch", "rfid",
                                         "rfid inventory", "rfid read", "rfid write", "rfid lock", "rfid kill",
                                         "rfid power", "rfid query", "barcode", "barcode list", "barcode watch",
                                         "barcode scan", "barcode edit", "barcode edit replace", "barcode edit insert",
                                         "barcode edit delete", "barcode symbology", "barcode symbology list",
                                         "barcode symbology enable", "barcode symbology disable", "barcode trigger",
                                         "barcode firmware"));

TEST(Arguments, AreTakenInUtf8) {
    const ChildResult result = Qlctl("barcode symbology enable \xE2\x82\xAC\xCE\xA9");
    EXPECT_TRUE(Contains(result.err, ": \xE2\x82\xAC\xCE\xA9")) << result.err;
}

TEST(Version, IsPrinted) {
    const ChildResult result = Qlctl("--version");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(Contains(result.out, "qlctl 3.0.1000.0")) << result.out;
}

TEST(Info, TellsAboutLibraryMachineAndFamilies) {
    const ScopedVariable model("QLSIM_MODEL", "JR-54X");
    const ChildResult result = Qlctl("info --json");
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    const Json info = Json::parse(result.out);
    EXPECT_EQ(info["sdk_version"], "3.0.1000.0");
    EXPECT_TRUE(info["library"].get<std::string>().ends_with("\\bin\\qlsdk.dll")) << info["library"];
    EXPECT_TRUE(info["firmware_product"].is_string());
    EXPECT_EQ(info["management_model"], "JR-54X");
    EXPECT_EQ(info["gps_receiver"], "LEADTEK Mod:LR9101");
    EXPECT_EQ(info["families"].size(), 6U);
    EXPECT_EQ(info["families"]["gps"], true);
    EXPECT_EQ(info["errors"], Json::object());
}

TEST(Info, DoesNotFailForAModelWithoutKnownReceiver) {
    const ScopedVariable model("QLSIM_MODEL", "Desk 9");
    const ChildResult result = Qlctl("info");
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_TRUE(Contains(result.out, "SDK version   3.0.1000.0\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "Model         Desk 9\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "GPS receiver  not known\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "  GPS         present\n")) << result.out;
}

TEST(Info, ShowsAPartThatFailsAsItsErrorAndTheRest) {
    const ScopedVariable fault("QLSIM_MANAGEMENT", "connect=0x80041003");
    const ChildResult result = Qlctl("info");
    EXPECT_EQ(result.exitStatus, 5);
    const std::string error = "error 5 (QLERR_INTERNAL_ERROR): Could not connect to WMI; Win32 HRESULT: ";
    EXPECT_TRUE(Contains(result.out, "SDK version   3.0.1000.0\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "Model         " + error)) << result.out;
    EXPECT_TRUE(Contains(result.out, "80041003\n")) << result.out;
    EXPECT_TRUE(Contains(result.out, "  GPS         present\n")) << result.out;
    EXPECT_EQ(result.err.rfind("qlctl: Model: " + error, 0), 0U) << result.err;

    const Json info = Json::parse(Qlctl("info --json").out);
    EXPECT_TRUE(info["management_model"].is_null());
    EXPECT_EQ(info["errors"]["management_model"]["code"], 5);
    EXPECT_EQ(info["errors"]["management_model"]["name"], "QLERR_INTERNAL_ERROR");
    EXPECT_EQ(info["sdk_version"], "3.0.1000.0");
}

}  // namespace
}  // namespace quarlin::qlctl
