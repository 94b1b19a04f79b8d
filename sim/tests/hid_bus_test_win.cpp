// SPDX-License-Identifier: Apache-2.0
// Devices on the virtual HID bus as programs find them.
#include <gtest/gtest.h>

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

#include <algorithm>

#include "hid_program_win.h"
#include "hidbus/hid_socket_win.h"

namespace quarlin::sim {
namespace {

using testing::CountPresent;
using testing::HidProgram;
using testing::IsPresent;
using testing::MakeReport;
using testing::NumberedIdentity;
using testing::PlainIdentity;
using testing::PresentPaths;
using testing::ScriptedDevice;

// Other tests may have devices there as well.
std::vector<std::string> OurPaths() {
    std::vector<std::string> paths = PresentPaths();
    std::erase_if(paths, [](const std::string& path) { return path.find("vid_51a1") == std::string::npos; });
    return paths;
}

class HidBus : public ::testing::Test {
  protected:
    const HidIdentity plain = PlainIdentity("6&2f9a1b0c&0&0000");
    const HidIdentity numbered = NumberedIdentity("7&13c8e02&0&0000");
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
};

// ---- being there ----

TEST_F(HidBus, ListsADeviceUnderThePathThatWindowsMakes) {
    EXPECT_EQ(CountPresent("vid_51a1"), 0u);
    socket->Plug(plain, device);
    const std::vector<std::string> paths = PresentPaths();
    EXPECT_EQ(std::count(paths.begin(), paths.end(),
                         R"(\\?\hid#vid_51a1&pid_0001#6&2f9a1b0c&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})"),
              1);
    EXPECT_EQ(CountPresent("vid_51a1"), 1u);
}

TEST_F(HidBus, IsPluggedBetweenPluggingInAndUnplugging) {
    EXPECT_FALSE(socket->IsPlugged());
    socket->Plug(plain, device);
    EXPECT_TRUE(socket->IsPlugged());
    socket->Unplug();
    EXPECT_FALSE(socket->IsPlugged());
    EXPECT_FALSE(IsPresent(plain));
}

TEST_F(HidBus, ReportsVendorProductVersionAndLengths) {
    socket->Plug(plain, device);
    const HidProgram program(plain);
    ASSERT_TRUE(program.IsOpen());
    HIDD_ATTRIBUTES attributes = {};
    attributes.Size = sizeof(attributes);
    ASSERT_TRUE(HidD_GetAttributes(program.Handle(), &attributes));
    EXPECT_EQ(attributes.VendorID, 0x51a1);
    EXPECT_EQ(attributes.ProductID, 0x0001);
    EXPECT_EQ(attributes.VersionNumber, 0x0203);

    PHIDP_PREPARSED_DATA data = nullptr;
    ASSERT_TRUE(HidD_GetPreparsedData(program.Handle(), &data));
    HIDP_CAPS caps = {};
    EXPECT_EQ(HidP_GetCaps(data, &caps), HIDP_STATUS_SUCCESS);
    HidD_FreePreparsedData(data);
    EXPECT_EQ(caps.InputReportByteLength, 888);
    EXPECT_EQ(caps.OutputReportByteLength, 64);
    EXPECT_EQ(caps.FeatureReportByteLength, 25);
    EXPECT_EQ(caps.UsagePage, 0xff00);
    EXPECT_EQ(caps.Usage, 0x01);
}

TEST_F(HidBus, HasTheSamePathWhenPluggedInAgain) {
    for (int i = 0; i < 10; ++i) {
        socket->Plug(plain, device);
        ASSERT_TRUE(IsPresent(plain)) << "round " << i;
        ASSERT_TRUE(HidProgram(plain).IsOpen()) << "round " << i;
        socket->Unplug();
        ASSERT_FALSE(IsPresent(plain)) << "round " << i;
    }
}

TEST_F(HidBus, MakesUpAnInstanceForEachSocketAndKeepsIt) {
    const HidIdentity nameless = PlainIdentity("");
    ScriptedDevice other;
    const std::unique_ptr<HidSocket> otherSocket = MakeHidSocket();
    socket->Plug(nameless, device);
    const std::vector<std::string> one = OurPaths();
    otherSocket->Plug(nameless, other);
    const std::vector<std::string> two = OurPaths();
    EXPECT_EQ(CountPresent("vid_51a1&pid_0001#6&51a4c0de&0&"), 2u);

    socket->Unplug();
    otherSocket->Unplug();
    socket->Plug(nameless, device);
    EXPECT_EQ(OurPaths(), one);
    otherSocket->Plug(nameless, other);
    EXPECT_EQ(OurPaths(), two);
}

TEST_F(HidBus, ShowsEachCollectionAsADeviceOfItsOwn) {
    HidIdentity first = plain;
    first.collection = 1;
    HidIdentity second = plain;
    second.collection = 99;
    ScriptedDevice other;
    const std::unique_ptr<HidSocket> otherSocket = MakeHidSocket();
    socket->Plug(first, device);
    otherSocket->Plug(second, other);
    EXPECT_EQ(CountPresent("vid_51a1&pid_0001&col01#"), 1u);
    EXPECT_EQ(CountPresent("vid_51a1&pid_0001&col99#"), 1u);
    EXPECT_FALSE(IsPresent(plain));
    EXPECT_EQ(HidProgram(second).SetFeature(MakeReport(0, 25, 1)), 0u);
    socket->Unplug();
    EXPECT_FALSE(IsPresent(first));
    EXPECT_TRUE(IsPresent(second));
}

TEST_F(HidBus, TakesAnotherDeviceIntoTheSameSocket) {
    socket->Plug(plain, device);
    socket->Unplug();
    socket->Plug(numbered, device);
    EXPECT_FALSE(IsPresent(plain));
    EXPECT_TRUE(IsPresent(numbered));
}

TEST_F(HidBus, UnpluggingAnEmptySocketDoesNothing) {
    socket->Unplug();
    socket->Unplug();
    EXPECT_FALSE(socket->IsPlugged());
}

TEST_F(HidBus, ASocketThatIsDestroyedUnplugs) {
    {
        const std::unique_ptr<HidSocket> brief = MakeHidSocket();
        brief->Plug(plain, device);
        ASSERT_TRUE(IsPresent(plain));
    }
    EXPECT_FALSE(IsPresent(plain));
}

// ---- what cannot be plugged in ----

TEST_F(HidBus, RefusesASecondDeviceOfTheSameNameAndASecondInOneSocket) {
    ScriptedDevice other;
    const std::unique_ptr<HidSocket> otherSocket = MakeHidSocket();
    socket->Plug(plain, device);
    EXPECT_THROW(otherSocket->Plug(plain, other), HidBusError);
    EXPECT_FALSE(otherSocket->IsPlugged());
    EXPECT_THROW(socket->Plug(numbered, other), HidBusError);
    EXPECT_TRUE(socket->IsPlugged());
    EXPECT_EQ(CountPresent("vid_51a1"), 1u);
    EXPECT_EQ(HidProgram(plain).SetFeature(MakeReport(0, 25, 1)), 0u);

    // The refused socket is as good as new.
    otherSocket->Plug(numbered, other);
    EXPECT_TRUE(IsPresent(numbered));
}

struct BadIdentity {
    const char* name;
    void (*spoil)(HidIdentity&);
};

const BadIdentity kBadIdentities[] = {
    {"NoDescriptor", [](HidIdentity& identity) { identity.reportDescriptor.clear(); }},
    {"CutDescriptor", [](HidIdentity& identity) { identity.reportDescriptor.resize(3); }},
    {"OpenCollection", [](HidIdentity& identity) { identity.reportDescriptor.pop_back(); }},
    {"NoInput",
     [](HidIdentity& identity) {
         identity.reportDescriptor = {0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01,
                                      0x75, 0x08, 0x95, 0x08, 0xb1, 0x02, 0xc0};
     }},
    {"TooLongReport",
     [](HidIdentity& identity) {
         identity.reportDescriptor = {0x06, 0x00, 0xff, 0x09, 0x01, 0xa1, 0x01, 0x75,
                                      0x20, 0x96, 0xff, 0x7f, 0x81, 0x02, 0xc0};
     }},
    {"TooLongDescriptor",
     [](HidIdentity& identity) {
         identity.reportDescriptor.insert(identity.reportDescriptor.begin(), 5000, std::uint8_t{0x00});
     }},
    {"SlashInInstance", [](HidIdentity& identity) { identity.instance = "6&a\\b"; }},
    {"TooHighCollection", [](HidIdentity& identity) { identity.collection = 100; }},
    {"TooLongInstance", [](HidIdentity& identity) { identity.instance.assign(65, 'a'); }},
};

class BadHidDevice : public ::testing::TestWithParam<BadIdentity> {};

TEST_P(BadHidDevice, IsRefusedAndLeavesTheSocketFree) {
    ScriptedDevice device;
    const std::unique_ptr<HidSocket> socket = MakeHidSocket();
    HidIdentity identity = PlainIdentity("6&2f9a1b0c&0&0000");
    GetParam().spoil(identity);
    EXPECT_THROW(socket->Plug(identity, device), HidBusError);
    EXPECT_FALSE(socket->IsPlugged());
    EXPECT_EQ(CountPresent("vid_51a1"), 0u);
    EXPECT_NO_THROW(socket->Plug(NumberedIdentity("1"), device));
}

INSTANTIATE_TEST_SUITE_P(All, BadHidDevice, ::testing::ValuesIn(kBadIdentities),
                         [](const auto& bad) { return std::string(bad.param.name); });

}  // namespace
}  // namespace quarlin::sim
