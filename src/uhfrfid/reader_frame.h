// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/export_frame.h"
#include "uhfrfid/reader_transport_win.h"
#include "uhfrfid/tag_reader.h"
#include "uhfrfid/uhf_family.h"

#include <utility>

namespace quarlin::uhfrfid {

// What all exports of the family have in common.

// A success leaves a record as a failure does.
struct RecordAlways : ClearOnSuccess {
    static QLerr Succeeded() noexcept { return Failed(QLERR_OK, CodeName(QLERR_OK)); }
};

// A body under the family's lock, which is left last.
template <typename Body>
QLerr ExportUnder(CSmartCritical* lock, Wording wording, Body&& body) noexcept {
    if (lock == nullptr) {
        return RecordAlways::Failed(QLERR_UHFRFID_SYSTEM, wording(QLERR_UHFRFID_SYSTEM));
    }
    const CSmartCriticalWrapper held(*lock);
    return Export<RecordAlways>(std::forward<Body>(body));
}

// A body for the reader behind a caller's handle. The wording is that of the checks here, not of the body's.
template <typename Body>
QLerr ExportForReader(void* handle, Wording wording, Body&& body) noexcept {
    return ExportUnder(uhfFamily.Lock(), wording, [&] {
        uhfFamily.RequireOpen(handle, wording);
        HidReaderTransport transport(handle);
        TagReader reader(transport, uhfFamily.ReportSize());
        std::forward<Body>(body)(reader);
    });
}

}  // namespace quarlin::uhfrfid
