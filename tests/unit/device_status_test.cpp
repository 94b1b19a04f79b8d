// SPDX-License-Identifier: Apache-2.0
#include "device/probe_status.h"

#include "core/quarlin_exception.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace quarlin::test {
namespace {

struct StatusRow {
    std::int32_t status;
    QLerr code;
    const char* message;
};

std::ostream& operator<<(std::ostream& out, const StatusRow& row) {
    return out << row.status;
}

std::string NameOf(const ::testing::TestParamInfo<StatusRow>& info) {
    const std::string number = std::to_string(info.param.status);
    return number[0] == '-' ? "minus_" + number.substr(1) : number;
}

class ProbeStatus : public ::testing::TestWithParam<StatusRow> {};

TEST_P(ProbeStatus, IsRaisedWithItsCodeAndText) {
    try {
        quarlin::device::RequireProbeSuccess(GetParam().status);
        FAIL() << "a success";
    } catch (const QuarlinException& failure) {
        EXPECT_EQ(failure.code, GetParam().code);
        EXPECT_STREQ(failure.what(), GetParam().message);
    }
}

constexpr const char* kUnknown = "Unknown device check error";

INSTANTIATE_TEST_SUITE_P(
    Table, ProbeStatus,
    ::testing::Values(StatusRow{-1, QLERR_OP_UNSUPPORTED, "Unsupported OS"},
                      StatusRow{-2, QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver"},
                      StatusRow{-3, QLERR_OP_UNSUPPORTED, "Invalid device check library operation"},
                      StatusRow{-10, QLERR_INVALID_STATE, "Device check library has not been initialized"},
                      StatusRow{-11, QLERR_INVALID_ARGUMENT, "Invalid device check library parameter"},
                      StatusRow{-12, QLERR_IO_ERROR, "Buffer overflow error"}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Others, ProbeStatus,
    ::testing::Values(StatusRow{2, QLERR_INTERNAL_ERROR, kUnknown}, StatusRow{3, QLERR_INTERNAL_ERROR, kUnknown},
                      StatusRow{-4, QLERR_INTERNAL_ERROR, kUnknown}, StatusRow{-9, QLERR_INTERNAL_ERROR, kUnknown},
                      StatusRow{-13, QLERR_INTERNAL_ERROR, kUnknown}, StatusRow{256, QLERR_INTERNAL_ERROR, kUnknown},
                      StatusRow{std::numeric_limits<std::int32_t>::max(), QLERR_INTERNAL_ERROR, kUnknown},
                      StatusRow{std::numeric_limits<std::int32_t>::min(), QLERR_INTERNAL_ERROR, kUnknown}),
    NameOf);

TEST(ProbeStatusOfSuccess, IsZeroOrOne) {
    EXPECT_NO_THROW(quarlin::device::RequireProbeSuccess(0));
    EXPECT_NO_THROW(quarlin::device::RequireProbeSuccess(1));
}

}  // namespace
}  // namespace quarlin::test
