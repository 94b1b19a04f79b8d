// SPDX-License-Identifier: Apache-2.0
#include "device/probe_status.h"

#include "core/quarlin_exception.h"

#include <array>

namespace quarlin::device {
namespace {

struct ProbeFailure {
    std::int32_t status;
    QLerr code;
    const char* message;
};

constexpr std::array<ProbeFailure, 6> kFailures = {{
    {-1, QLERR_OP_UNSUPPORTED, "Unsupported OS"},
    {-2, QLERR_OP_UNSUPPORTED, "Incompatable or missing misc driver"},
    {-3, QLERR_OP_UNSUPPORTED, "Invalid device check library operation"},
    {-10, QLERR_INVALID_STATE, "Device check library has not been initialized"},
    {-11, QLERR_INVALID_ARGUMENT, "Invalid device check library parameter"},
    // Programs know it as an I/O error, although there is a code for overflows.
    {-12, QLERR_IO_ERROR, "Buffer overflow error"},
}};

}  // namespace

void RequireProbeSuccess(std::int32_t status) {
    if (status == 0 || status == 1) {
        return;
    }
    for (const ProbeFailure& failure : kFailures) {
        if (failure.status == status) {
            Fail(failure.code, failure.message);
        }
    }
    FailUnknownProbeError();
}

void FailUnknownProbeError() {
    Fail(QLERR_INTERNAL_ERROR, "Unknown device check error");
}

}  // namespace quarlin::device
