// SPDX-License-Identifier: Apache-2.0
// Which receiver the machine carries, by its model, and the firmware version that no receiver tells.
#include <quarlin/gps.h>
#include <quarlin/library.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>

#include "gps/gps_session_win.h"
#include "support/last_error.h"
#include "support/machine_state_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kTooSmall = "buf size is too small";
constexpr const char* kNoName = "module_name arg cannot be NULL";
constexpr const char* kReceiver = "LEADTEK Mod:LR9101";
constexpr const char* kCannotConnect = "Could not connect to WMI";
constexpr HRESULT kAccessDenied = static_cast<HRESULT>(0x80041003);

// The machine's model, as its management service tells it.
EnvironmentGuard ModelIs(const char* model) {
    return EnvironmentGuard(L"QLSIM_MODEL", ToWide(model));
}

EnvironmentGuard ManagementFails() {
    return EnvironmentGuard(L"QLSIM_MANAGEMENT", L"connect=0x80041003");
}

// A buffer that shows what was written to it.
class NameBuffer {
  public:
    static constexpr int kSize = 64;

    NameBuffer() {
        for (int i = 0; i < kSize; ++i) {
            bytes_.at(static_cast<size_t>(i)) = '?';
        }
    }
    char* data() { return bytes_.data(); }
    // The text, with the bytes behind its terminator checked to be as they were; "?" when nothing was written.
    std::string Text() const {
        const std::string all(bytes_.data(), bytes_.size());
        const size_t end = all.find('\0');
        if (end == std::string::npos) {
            return all == std::string(kSize, '?') ? "?" : "(no terminator) " + all;
        }
        return all.find_first_not_of('?', end + 1) == std::string::npos ? all.substr(0, end) : "(too much) " + all;
    }

  private:
    std::array<char, kSize> bytes_{};
};

struct Model {
    const char* name;
    const char* text;
};

std::ostream& operator<<(std::ostream& out, const Model& model) {
    return out << '"' << model.text << '"';
}

std::string NameOfModel(const ::testing::TestParamInfo<Model>& model) {
    return model.param.name;
}

class GpsReceiverOfModel : public ::testing::TestWithParam<Model> {};
INSTANTIATE_TEST_SUITE_P(
    Known, GpsReceiverOfModel,
    ::testing::Values(Model{"JR51", "JR-51"}, Model{"JR52", "JR-52"}, Model{"JR53", "JR-53"}, Model{"JR54", "JR-54"},
                      Model{"JR55", "JR-55"}, Model{"JR56", "JR-56"}, Model{"JR57", "JR-57"}, Model{"JR58", "JR-58"},
                      Model{"WithMoreBehindIt", "JR-56SIM"},
                      Model{"WithMuchBehindIt", "JR-51 rugged portable, of some fifty characters"}),
    NameOfModel);

TEST_P(GpsReceiverOfModel, IsNamed) {
    const EnvironmentGuard model = ModelIs(GetParam().text);
    NameBuffer name;
    ASSERT_EQ(QLGPS_GetGpsDevices(nullptr), QLERR_BUFFER_OVERFLOW);
    EXPECT_SUCCESS(QLGPS_GetDeviceName(name.data(), NameBuffer::kSize));
    EXPECT_EQ(name.Text(), kReceiver);
}

class GpsModelWithoutReceiver : public ::testing::TestWithParam<Model> {};
INSTANTIATE_TEST_SUITE_P(Unknown, GpsModelWithoutReceiver,
                         ::testing::Values(Model{"BelowTheFirst", "JR-50"}, Model{"AboveTheLast", "JR-59"},
                                           Model{"FourCharacters", "JR-5"}, Model{"ThreeCharacters", "JR-"},
                                           Model{"Empty", ""}, Model{"SmallLetters", "jr-56"},
                                           Model{"SomethingBefore", "XJR-56"}, Model{"BlankBefore", " JR-56"},
                                           Model{"BlankWithin", "JR 56SIM"}, Model{"NameAtTheEnd", "Laptop JR-56"}),
                         NameOfModel);

TEST_P(GpsModelWithoutReceiver, IsNotSupported) {
    const EnvironmentGuard model = ModelIs(GetParam().text);
    NameBuffer name;
    EXPECT_FAILURE(QLGPS_GetDeviceName(name.data(), NameBuffer::kSize), QLERR_OP_UNSUPPORTED, "UNKNOWN DEVICE");
    EXPECT_EQ(name.Text(), "NOT_SUPPORTED");
    EXPECT_FAILURE(QLGPS_GetDeviceName(nullptr, NameBuffer::kSize), QLERR_BUFFER_OVERFLOW, kNoName);
}

TEST(GpsDeviceName, FitsTheSmallestBuffer) {
    const EnvironmentGuard model = ModelIs("JR-56SIM");
    NameBuffer name;
    EXPECT_SUCCESS(QLGPS_GetDeviceName(name.data(), 20));
    EXPECT_EQ(name.Text(), kReceiver);
}

TEST(GpsDeviceName, RefusesASmallBufferBeforeAnythingElse) {
    const EnvironmentGuard management = ManagementFails();
    NameBuffer name;
    for (const int size : {19, 1, 0, -1, -2147483647 - 1}) {
        EXPECT_FAILURE(QLGPS_GetDeviceName(name.data(), size), QLERR_BUFFER_OVERFLOW, kTooSmall) << size;
        EXPECT_FAILURE(QLGPS_GetDeviceName(nullptr, size), QLERR_BUFFER_OVERFLOW, kTooSmall) << size;
    }
    EXPECT_EQ(name.Text(), "?");
}

TEST(GpsDeviceName, ShowsTheFailureOfTheModelBeforeANullBuffer) {
    const EnvironmentGuard management = ManagementFails();
    NameBuffer name;
    EXPECT_FAILURE(QLGPS_GetDeviceName(name.data(), 20), QLERR_INTERNAL_ERROR,
                   HResultMessage(kCannotConnect, kAccessDenied));
    EXPECT_EQ(name.Text(), "?");
    EXPECT_FAILURE(QLGPS_GetDeviceName(nullptr, 20), QLERR_INTERNAL_ERROR,
                   HResultMessage(kCannotConnect, kAccessDenied));
}

TEST(GpsDeviceName, ComesWhenTheModelCanBeReadAgain) {
    const EnvironmentGuard model = ModelIs("JR-53");
    NameBuffer name;
    {
        const EnvironmentGuard management = ManagementFails();
        EXPECT_FAILURE(QLGPS_GetDeviceName(name.data(), 20), QLERR_INTERNAL_ERROR,
                       HResultMessage(kCannotConnect, kAccessDenied));
    }
    EXPECT_SUCCESS(QLGPS_GetDeviceName(name.data(), 20));
    EXPECT_EQ(name.Text(), kReceiver);
}

TEST(GpsDeviceName, NeedsABufferOnceTheModelIsRead) {
    const EnvironmentGuard model = ModelIs("JR-56SIM");
    EXPECT_FAILURE(QLGPS_GetDeviceName(nullptr, 20), QLERR_BUFFER_OVERFLOW, kNoName);
    // The model was read all the same: it is known now, though the management service has gone.
    const EnvironmentGuard management = ManagementFails();
    NameBuffer name;
    EXPECT_SUCCESS(QLGPS_GetDeviceName(name.data(), 20));
    EXPECT_EQ(name.Text(), kReceiver);
}

// The name is that of the management service's model, not of the firmware's.
TEST(GpsDeviceName, IsThatOfTheModelTheLibraryTells) {
    const EnvironmentGuard model = ModelIs("JR-57 first");
    NameBuffer told;
    int length = 0;
    ASSERT_SUCCESS(QLMISC_GetModelNumber(told.data(), NameBuffer::kSize, &length));
    EXPECT_EQ(told.Text(), "JR-57 first");
    const EnvironmentGuard later = ModelIs("Another");
    NameBuffer name;
    EXPECT_SUCCESS(QLGPS_GetDeviceName(name.data(), 20));
    EXPECT_EQ(name.Text(), kReceiver);
}

TEST(GpsFirmwareVersion, IsNeverTold) {
    NameBuffer version;
    for (const int size : {20, 21, 64, 2147483647}) {
        EXPECT_FAILURE(QLGPS_GetDeviceFirmwareVersion(version.data(), size), QLERR_OP_UNSUPPORTED,
                       "This GPS device doesn't have firmware version")
            << size;
    }
    EXPECT_EQ(version.Text(), "?");
}

TEST(GpsFirmwareVersion, RefusesASmallBuffer) {
    NameBuffer version;
    for (const int size : {19, 10, 0, -1}) {
        EXPECT_FAILURE(QLGPS_GetDeviceFirmwareVersion(version.data(), size), QLERR_BUFFER_OVERFLOW, kTooSmall) << size;
    }
    EXPECT_EQ(version.Text(), "?");
}

TEST(GpsFirmwareVersion, RefusesANullBufferBeforeItsSize) {
    for (const int size : {64, 20, 19, 0, -1}) {
        EXPECT_FAILURE(QLGPS_GetDeviceFirmwareVersion(nullptr, size), QLERR_BUFFER_OVERFLOW, kNoName) << size;
    }
}

// A receiver that is read from changes nothing.
TEST(GpsFirmwareVersion, IsNotToldByAnInitializedReceiverEither) {
    const GpsSession session(3);
    NameBuffer version;
    EXPECT_FAILURE(QLGPS_GetDeviceFirmwareVersion(version.data(), 64), QLERR_OP_UNSUPPORTED,
                   "This GPS device doesn't have firmware version");
}

}  // namespace
}  // namespace quarlin::test
