// SPDX-License-Identifier: Apache-2.0
// Which scanner a machine has, by its model and what its probe library reports.
#include "bcr/scanner_choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

namespace quarlin::test {
namespace {

using bcr::BarcodeEngineKind;
using bcr::ChooseScanner;
using bcr::ComputerModel;
using bcr::ModelOf;
using bcr::ScannerHardware;

static_assert(sizeof(QLBCR_DEVICE_INFO) == 32);

struct ModelRow {
    const char* test;
    const wchar_t* productName;
    ComputerModel model;
};

void PrintTo(const ModelRow& row, std::ostream* stream) {
    *stream << row.test;
}

const std::vector<ModelRow> kModelRows{
    {"Hxt7", L"HXT7", ComputerModel::kHxt7},
    {"Hxt7WithDash", L"HX-T7", ComputerModel::kHxt7},
    {"Hxt7WithMoreBehind", L"HXT7-0815", ComputerModel::kHxt7},
    {"Hxt7WithDashAndMoreBehind", L"HX-T70", ComputerModel::kHxt7},
    {"Hxt8", L"HXT8", ComputerModel::kHxt8},
    {"Hxt8WithDash", L"HX-T8", ComputerModel::kHxt8},
    {"Hxt8WithMoreBehind", L"HXT8A mk2", ComputerModel::kHxt8},
    {"Jr41", L"JR41", ComputerModel::kJr41},
    {"Jr41WithDash", L"JR-41", ComputerModel::kJr41},
    {"Jr41WithMoreBehind", L"JR-41-1", ComputerModel::kJr41},
    {"Jr42", L"JR42", ComputerModel::kJr42},
    {"Jr42WithDash", L"JR-42", ComputerModel::kJr42},
    {"Jr42WithMoreBehind", L"JR42XL", ComputerModel::kJr42},
    {"Empty", L"", ComputerModel::kOther},
    {"BeginningAlone", L"JR4", ComputerModel::kOther},
    {"BeginningWithDashAlone", L"HX-T", ComputerModel::kOther},
    {"OtherNumber", L"JR43", ComputerModel::kOther},
    {"OtherHxtNumber", L"HXT9", ComputerModel::kOther},
    {"LowerCase", L"jr41", ComputerModel::kOther},
    {"OneLetterInLowerCase", L"HXt8", ComputerModel::kOther},
    {"BlankBefore", L" JR41", ComputerModel::kOther},
    {"NotAtTheBeginning", L"Norvane JR41", ComputerModel::kOther},
    {"DashElsewhere", L"HXT-7", ComputerModel::kOther},
    {"BlankForTheDash", L"JR 41", ComputerModel::kOther},
};

class BarcodeModel : public testing::TestWithParam<ModelRow> {};

TEST_P(BarcodeModel, IsToldByTheBeginningOfTheProductName) {
    EXPECT_EQ(ModelOf(GetParam().productName), GetParam().model);
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeModel, testing::ValuesIn(kModelRows),
                         [](const auto& test) { return test.param.test; });

struct ChoiceRow {
    ComputerModel model;
    ScannerHardware hardware;
    const char* name;  // null for no scanner
    BarcodeEngineKind kind = BarcodeEngineKind::kNone;
    std::int32_t linkKind = 0;
    std::int32_t linkFlag = 0;
};

constexpr auto kBuiltIn = BarcodeEngineKind::kIntermecBuiltIn;
constexpr auto kUsb = BarcodeEngineKind::kIntermecUsb0801;
constexpr auto kHoneywell = BarcodeEngineKind::kHoneywell;

const std::vector<ChoiceRow> kChoiceRows{
    {ComputerModel::kOther, ScannerHardware::kNone, nullptr},
    {ComputerModel::kHxt7, ScannerHardware::kNone, nullptr},
    {ComputerModel::kHxt8, ScannerHardware::kNone, nullptr},
    {ComputerModel::kJr41, ScannerHardware::kNone, nullptr},
    {ComputerModel::kJr42, ScannerHardware::kNone, nullptr},
    {ComputerModel::kOther, ScannerHardware::kIntermecBuiltIn, "Intermec EA15/EA21", kBuiltIn, 2, 1},
    {ComputerModel::kHxt7, ScannerHardware::kIntermecBuiltIn, "Intermec EA15/EA21", kBuiltIn, 2, 1},
    {ComputerModel::kHxt8, ScannerHardware::kIntermecBuiltIn, "Intermec EA15/EA21", kBuiltIn, 2, 1},
    {ComputerModel::kJr41, ScannerHardware::kIntermecBuiltIn, "Intermec EA15/EA21", kBuiltIn, 2, 1},
    {ComputerModel::kJr42, ScannerHardware::kIntermecBuiltIn, "Intermec EA15/EA21", kBuiltIn, 2, 1},
    {ComputerModel::kOther, ScannerHardware::kEngine, nullptr},
    {ComputerModel::kHxt7, ScannerHardware::kEngine, nullptr},
    {ComputerModel::kHxt8, ScannerHardware::kEngine, "Intermec EA30", kUsb},
    {ComputerModel::kJr41, ScannerHardware::kEngine, "Honeywell N6603", kUsb},
    {ComputerModel::kJr42, ScannerHardware::kEngine, "Honeywell N6603", kUsb},
    {ComputerModel::kOther, ScannerHardware::kMiniDb, "Honeywell MiniDB", kHoneywell},
    {ComputerModel::kHxt7, ScannerHardware::kMiniDb, "Honeywell MiniDB", kHoneywell},
    {ComputerModel::kHxt8, ScannerHardware::kMiniDb, "Honeywell MiniDB", kHoneywell},
    {ComputerModel::kJr41, ScannerHardware::kMiniDb, "Honeywell MiniDB", kHoneywell},
    {ComputerModel::kJr42, ScannerHardware::kMiniDb, "Honeywell MiniDB", kHoneywell},
};

std::string NameOf(const ChoiceRow& row) {
    constexpr std::array kModels{"Other", "Hxt7", "Hxt8", "Jr41", "Jr42"};
    constexpr std::array kHardware{"None", "BuiltIn", "Engine", "MiniDb"};
    return std::string(kModels.at(static_cast<std::size_t>(row.model))) + "With" +
           kHardware.at(static_cast<std::size_t>(row.hardware));
}

void PrintTo(const ChoiceRow& row, std::ostream* stream) {
    *stream << NameOf(row);
}

void ExpectReservedIsZero(const QLBCR_DEVICE_INFO& info) {
    EXPECT_TRUE(std::ranges::all_of(info.reserved, [](std::uint8_t byte) { return byte == 0; }));
}

class BarcodeChoice : public testing::TestWithParam<ChoiceRow> {};

TEST_P(BarcodeChoice, IsMadeByModelAndHardware) {
    const ChoiceRow& row = GetParam();
    const std::optional<bcr::ScannerChoice> choice = ChooseScanner(row.model, row.hardware);
    ASSERT_EQ(choice.has_value(), row.name != nullptr);
    if (!choice) {
        return;
    }
    EXPECT_EQ(choice->kind, row.kind);
    EXPECT_EQ(choice->info.index, 0);
    EXPECT_EQ(choice->info.iDeviceType, 1);
    EXPECT_STREQ(choice->info.deviceName, row.name);
    EXPECT_EQ(choice->info.linkKind, row.linkKind);
    EXPECT_EQ(choice->info.linkFlag, row.linkFlag);
    ExpectReservedIsZero(choice->info);
}

// Callers keep the pointer as long as the library is loaded.
TEST_P(BarcodeChoice, NameIsTheSameTextEachTime) {
    const auto first = ChooseScanner(GetParam().model, GetParam().hardware);
    const auto second = ChooseScanner(GetParam().model, GetParam().hardware);
    ASSERT_EQ(first.has_value(), second.has_value());
    if (first) {
        EXPECT_EQ(first->info.deviceName, second->info.deviceName);
    }
}

INSTANTIATE_TEST_SUITE_P(All, BarcodeChoice, testing::ValuesIn(kChoiceRows),
                         [](const auto& test) { return NameOf(test.param); });

TEST(BarcodeExternalScanner, IsBarcodeReaderOfNoKindYet) {
    const bcr::ScannerChoice choice = bcr::ExternalScanner();
    EXPECT_EQ(choice.kind, BarcodeEngineKind::kNone);
    EXPECT_EQ(choice.info.index, 0);
    EXPECT_EQ(choice.info.iDeviceType, 0);
    EXPECT_STREQ(choice.info.deviceName, "Barcode Reader");
    EXPECT_EQ(choice.info.linkKind, 0);
    EXPECT_EQ(choice.info.linkFlag, 0);
    ExpectReservedIsZero(choice.info);
}

}  // namespace
}  // namespace quarlin::test
