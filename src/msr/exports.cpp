// SPDX-License-Identifier: Apache-2.0
#include "core/export_frame.h"
#include "msr/card_reader_family.h"

#include <quarlin/card_reader.h>

#include <cstdlib>
#include <utility>

using namespace quarlin;
using namespace quarlin::msr;

namespace {

// The frame of this family. Without its lock, when the system had none left, there is no manager either, and that is
// what the calls report.
template <typename Body>
QLerr ExportCardReader(Body&& body) {
    const InterruptibleLockHolder held(cardReaderFamily.Lock());
    return Export(std::forward<Body>(body));
}

void RequireFirstParameter(bool given) {
    Require(given, QLERR_INVALID_ARGUMENT, "1st parameter is invalid.(NULL)");
}

void RequireBothParameters(bool given) {
    Require(given, QLERR_INVALID_ARGUMENT, "1st or 2nd parameter is invalid.(NULL)");
}

}  // namespace

QLerr QLMSR_Initialize() {
    return ExportCardReader([] { cardReaderFamily.Initialize(); });
}

QLerr QLMSR_Uninitialize() {
    return ExportCardReader([] { cardReaderFamily.Uninitialize(); });
}

QLerr QLMSR_GetMagStripeDevices(MagStripeReaderInfo* readers, int* count) {
    return ExportCardReader([&] {
        cardReaderFamily.Manager("no exist IQlMagStripeMgr instance.");
        RequireBothParameters(readers != nullptr && count != nullptr);
        cardReaderFamily.ListReaders(readers, *count);
    });
}

MagStripeReaderInfo* QLMSR_GetMagStripeDevices_DotNET(QLerr* result, int* count) {
    constexpr int kCapacity = 3;
    const InterruptibleLockHolder held(cardReaderFamily.Lock());
    // The caller's, who releases it with the runtime's free.
    auto* const readers = static_cast<MagStripeReaderInfo*>(std::calloc(kCapacity, sizeof(MagStripeReaderInfo)));
    int listedCount = kCapacity;
    QLerr listed = QLERR_OK;
    if (result == nullptr || count == nullptr) {
        listed = Export([] { RequireBothParameters(false); });
    } else if (readers == nullptr) {
        listed = Export([] { Fail(QLERR_INTERNAL_ERROR, "memory allocate error."); });
    } else {
        listed = QLMSR_GetMagStripeDevices(readers, &listedCount);
    }
    if (result != nullptr) {
        *result = listed;
    }
    if (count != nullptr) {
        *count = listedCount;
    }
    return readers;
}

QLerr QLMSR_SelectDevice(int index) {
    return ExportCardReader([&] { cardReaderFamily.Select(index); });
}

QLerr QLMSR_Enable() {
    return ExportCardReader([] { cardReaderFamily.EnableSelected(true); });
}

QLerr QLMSR_Disable() {
    return ExportCardReader([] { cardReaderFamily.EnableSelected(false); });
}

QLerr QLMSR_IsEnabled(bool* enabled) {
    return ExportCardReader([&] {
        RequireFirstParameter(enabled != nullptr);
        *enabled = false;
        *enabled = cardReaderFamily.IsSelectedEnabled();
    });
}

QLerr QLMSR_AddCallback(QLMSR_Callback callback, unsigned int* id) {
    return ExportCardReader([&] {
        RequireBothParameters(callback != nullptr && id != nullptr);
        *id = 0;
        std::uint32_t added = 0;
        Require(cardReaderFamily.Manager().AddCallback(callback, added), QLERR_INTERNAL_ERROR, "Add callback failure.");
        *id = added;
    });
}

QLerr QLMSR_RemoveCallback(unsigned int id) {
    return ExportCardReader([&] {
        Require(cardReaderFamily.Manager().RemoveCallback(static_cast<std::int32_t>(id)), QLERR_INVALID_ARGUMENT,
                "Fail remove callback.Check parameter and usage.");
    });
}

QLerr QLMSR_ClearCallbacks() {
    return ExportCardReader([] { cardReaderFamily.Manager().ClearCallbacks(); });
}

QLerr QLMSR_GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras) {
    return ExportCardReader([&] {
        RequireBothParameters(record != nullptr && extras != nullptr);
        Require(cardReaderFamily.Manager().GetMagTekExtras(record, extras), QLERR_INTERNAL_ERROR, "Invalid raw data.");
    });
}
