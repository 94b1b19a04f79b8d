// SPDX-License-Identifier: Apache-2.0
#include "core/last_error.h"

#include "core/error_table.h"
#include "core/text.h"
#include "core/thread_local_win.h"

#include <memory>
#include <string>
#include <utility>

namespace quarlin {
namespace {

struct LastErrorRecord {
    QLerr code = QLERR_OK;
    std::string message;
};

ThreadLocal lastErrors;
// Created and destroyed beside the first for symmetry; nothing is ever stored in it.
[[maybe_unused]] ThreadLocal lastErrorsTwin;

LastErrorRecord* CurrentRecord() {
    return static_cast<LastErrorRecord*>(lastErrors.Get());
}

void DestroyRecord(LastErrorRecord* record) {
    lastErrors.Set(nullptr);
    lastErrorCount.fetch_sub(1, std::memory_order_relaxed);
    const std::unique_ptr<LastErrorRecord> owner(record);
}

}  // namespace

constinit std::atomic<std::int32_t> lastErrorCount{0};

QLerr SetQlLastError(QLerr code, const char* message) {
    std::string text;
    if (message != nullptr) {
        text = message;
    } else if (auto generated = GeneratedMessage(code)) {
        text = std::move(*generated);
    } else {
        return code;
    }

    LastErrorRecord* record = CurrentRecord();
    std::unique_ptr<LastErrorRecord> fresh;
    if (record == nullptr) {
        fresh = std::make_unique<LastErrorRecord>();
        record = fresh.get();
    }
    record->code = code;
    record->message = std::move(text);
    lastErrors.Set(record);
    if (fresh) {
        lastErrorCount.fetch_add(1, std::memory_order_relaxed);
    }
    fresh.release();  // NOLINT(bugprone-unused-return-value): the slot owns it now
    return code;
}

QLerr EraseQlLastError() {
    if (LastErrorRecord* record = CurrentRecord()) {
        DestroyRecord(record);
    }
    return QLERR_OK;
}

void ForgetQlLastError() noexcept {
    try {
        ClearQlLastError();
    } catch (...) {
        // There is no slot that it could be in.
    }
}

QLerr TakeQlLastError(char* buffer, int bufferSize) {
    LastErrorRecord* record = CurrentRecord();
    if (record == nullptr) {
        if (bufferSize >= 1 && buffer != nullptr) {
            buffer[0] = '\0';
        }
        return QLERR_OK;
    }
    BoundedCopyNarrow(buffer, bufferSize, record->message.c_str());
    const QLerr code = record->code;
    DestroyRecord(record);
    return code;
}

}  // namespace quarlin
