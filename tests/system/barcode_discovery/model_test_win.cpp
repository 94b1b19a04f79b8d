// SPDX-License-Identifier: Apache-2.0
// Which scanner device 14 is, by the product name of the firmware.
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "barcode_discovery/discovery_test_win.h"
#include "barcode_discovery/plugged_scanner_win.h"

namespace quarlin::test {
namespace {

const std::vector<Listed> kEa30 = {Engine("Intermec EA30")};
const std::vector<Listed> kN6603 = {Engine("Honeywell N6603")};
const std::vector<Listed> kNothing;

// A machine with device 14 and a scanner on USB; all tests have it one after the other.
class ModelTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        machine_ = std::make_unique<ScannerMachine>(ScannerSetup::Engine(L"JR41"));
        scanner_ = std::make_unique<PluggedScanner>(kIntermecVendor, 0x0801, 2);
    }
    static void TearDownTestSuite() {
        scanner_.reset();
        machine_.reset();
    }

    // The firmware's product name; goes back to JR41 with the test.
    RegistryValueGuard productName_{HKEY_LOCAL_MACHINE, L"HARDWARE\\Description\\System\\BIOS", L"SystemProductName"};

    inline static std::unique_ptr<ScannerMachine> machine_;
    inline static std::unique_ptr<PluggedScanner> scanner_;
};

struct Model {
    const char* name;
    std::optional<std::wstring> productName;
    const std::vector<Listed>* listed;
};

std::ostream& operator<<(std::ostream& out, const Model& model) {
    return out << model.name;
}

class ModelTable : public ModelTest, public ::testing::WithParamInterface<Model> {};

TEST_P(ModelTable, DecidesWhichScannerDevice14Is) {
    const Model& model = GetParam();
    if (model.productName) {
        productName_.SetText(*model.productName);
    } else {
        productName_.Remove();
    }
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), *model.listed);
}

std::string NameOfModel(const ::testing::TestParamInfo<Model>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Names, ModelTable,
    ::testing::Values(Model{"Hxt7", L"HXT7", &kNothing}, Model{"HxDashT7", L"HX-T7", &kNothing},
                      Model{"Hxt7AndMore", L"HXT7-B2", &kNothing}, Model{"Hxt8", L"HXT8", &kEa30},
                      Model{"HxDashT8", L"HX-T8", &kEa30}, Model{"Hxt8AndMore", L"HXT8 Rugged Tablet", &kEa30},
                      Model{"HxDashT8AndMore", L"HX-T8123", &kEa30}, Model{"Jr41", L"JR41", &kN6603},
                      Model{"JrDash41", L"JR-41", &kN6603}, Model{"Jr41AndMore", L"JR415", &kN6603},
                      Model{"Jr42", L"JR42", &kN6603}, Model{"JrDash42", L"JR-42", &kN6603},
                      Model{"JrDash42AndMore", L"JR-42 mk2", &kN6603}, Model{"SmallJr41", L"jr41", &kNothing},
                      Model{"MixedJr41", L"Jr41", &kNothing}, Model{"SmallHxt8", L"hxt8", &kNothing},
                      Model{"Jr43", L"JR43", &kNothing}, Model{"Jr4", L"JR4", &kNothing},
                      Model{"Hxt9", L"HXT9", &kNothing}, Model{"NotAtTheBeginning", L"Quarlin JR41", &kNothing},
                      Model{"BlankBefore", L" JR41", &kNothing}, Model{"DashElsewhere", L"J-R41", &kNothing},
                      Model{"Other", L"Standard PC", &kNothing}, Model{"Empty", L"", &kNothing},
                      Model{"Missing", {}, &kNothing}),
    NameOfModel);

TEST_F(ModelTest, IsAskedForOncePerProcess) {
    productName_.SetText(L"HXT8");
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kEa30);
    productName_.SetText(L"JR41");
    discoverer.Forget();
    EXPECT_EQ(discoverer.List(), kEa30);
}

TEST_F(ModelTest, OfNoKnownNameIsKeptToo) {
    productName_.SetText(L"Standard PC");
    Discoverer discoverer;
    EXPECT_EQ(discoverer.List(), kNothing);
    productName_.SetText(L"JR41");
    EXPECT_EQ(discoverer.List(), kNothing);
}

TEST_F(ModelTest, DoesNotMatterForTheOtherScanners) {
    const auto report = [](std::size_t device, bool isThere) {
        machine_->Probe()->devices[device - 1].available = isThere ? 1 : 0;
    };
    productName_.SetText(L"HXT8");
    report(15, true);
    {
        Discoverer discoverer;
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{Engine("Honeywell MiniDB")});
    }
    report(15, false);
    report(14, false);
    report(1, true);
    {
        Discoverer discoverer;
        EXPECT_EQ(discoverer.List(), std::vector<Listed>{BuiltIn()});
    }
    report(14, true);
    report(1, false);
}

}  // namespace
}  // namespace quarlin::test
