// SPDX-License-Identifier: Apache-2.0
// Text helpers and the last error, with the rules of quarlin/strings.h and quarlin/error.h.
#include "flat_library.h"
#include "text_forms.h"

#include <algorithm>
#include <stdexcept>

using namespace quarlin::test;

namespace {

std::string Shown(const char* text) {
    return text == nullptr ? "null" : "\"" + std::string(text) + "\"";
}

QLerr Fail(FlatLibrary& flat, QLerr code, const char* message) {
    flat.LeaveError(code, message);
    return code;
}

// Copies what fits and a terminator. False when that is not all.
template <typename Unit>
bool CopyText(Unit* to, int size, std::basic_string_view<Unit> text) {
    if (size == 0) {
        return false;
    }
    const auto room = size < 0 ? std::size_t{0} : static_cast<std::size_t>(size) - 1;
    const std::size_t count = std::min(room, text.size());
    std::copy_n(text.begin(), count, to);
    to[count] = Unit{};
    return size > 0 && count == text.size();
}

template <typename Unit>
QLerr Copy(const char* name, const std::string& call, Unit* to, int size, const Unit* text) {
    FlatLibrary* const flat = FlatLibrary::Current();
    if (flat == nullptr) {
        return QLERR_INTERNAL_ERROR;
    }
    flat->Note(std::string(name) + call, true);
    flat->ForgetError();
    if (to == nullptr || text == nullptr || !CopyText(to, size, std::basic_string_view<Unit>(text))) {
        return Fail(*flat, QLERR_INTERNAL_ERROR, "Failed to copy string\nError 122: it does not fit.");
    }
    return QLERR_OK;
}

// Bytes as the system converts them: each part that is not UTF-8 is replaced.
template <typename Unit>
QLerr Convert(FlatLibrary& flat, const char* failure, Unit* to, int size, int* count,
              const std::basic_string<Unit>& converted) {
    const auto needed = static_cast<int>(converted.size() + 1);
    if (size < 0 || (size > 0 && (to == nullptr || size < needed))) {
        // What is in the buffer after a failure is nothing to rely on: no terminator, and no text of the caller's.
        if (to != nullptr && size > 0) {
            std::fill_n(to, size, static_cast<Unit>('?'));
        }
        return Fail(flat, QLERR_INTERNAL_ERROR, failure);
    }
    if (size > 0) {
        std::copy_n(converted.c_str(), static_cast<std::size_t>(needed), to);
    }
    *count = needed;
    return QLERR_OK;
}

}  // namespace

extern "C" {

QLerr QLSTR_StrCopyAnsi(char* dst, int dstSize, const char* src) {
    return Copy(__func__, "(" + std::to_string(dstSize) + ", " + Shown(src) + ")", dst, dstSize, src);
}

QLerr QLSTR_StrCopy(wchar_t* dst, int dstSize, const wchar_t* src) {
    const std::string text = src == nullptr ? "null" : "\"" + Narrow(src) + "\"";
    return Copy(__func__, "(" + std::to_string(dstSize) + ", " + text + ")", dst, dstSize, src);
}

QLerr QLSTR_NarrowToWide(wchar_t* dst, int dstSize, int* outCount, const char* src) {
    FlatLibrary* const flat = FlatLibrary::Current();
    if (flat == nullptr) {
        return QLERR_INTERNAL_ERROR;
    }
    flat->Note(std::string(__func__) + "(" + std::to_string(dstSize) + ", " + Shown(src) + ")", true);
    flat->ForgetError();
    if (outCount == nullptr) {
        return Fail(*flat, QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
    }
    constexpr const char* kFailure = "Multibyte to unicode conversion failed\nError 122: it does not fit.";
    return src == nullptr ? Fail(*flat, QLERR_INTERNAL_ERROR, kFailure)
                          : Convert(*flat, kFailure, dst, dstSize, outCount, Widen(src));
}

QLerr QLSTR_WideToNarrow(char* dst, int dstSize, int* outCount, const wchar_t* src) {
    FlatLibrary* const flat = FlatLibrary::Current();
    if (flat == nullptr) {
        return QLERR_INTERNAL_ERROR;
    }
    const std::string text = src == nullptr ? "null" : "\"" + Narrow(src) + "\"";
    flat->Note(std::string(__func__) + "(" + std::to_string(dstSize) + ", " + text + ")", true);
    flat->ForgetError();
    if (outCount == nullptr) {
        return Fail(*flat, QLERR_INVALID_ARGUMENT, "The argument count cannot be NULL.");
    }
    constexpr const char* kFailure = "Unicode to multibyte conversion failed\nError 122: it does not fit.";
    return src == nullptr ? Fail(*flat, QLERR_INTERNAL_ERROR, kFailure)
                          : Convert(*flat, kFailure, dst, dstSize, outCount, Narrow(src));
}

QLerr QLAPI_GetLastError(char* buffer, int bufferSize) {
    FlatLibrary* const flat = FlatLibrary::Current();
    if (flat == nullptr) {
        return QLERR_INTERNAL_ERROR;
    }
    flat->Note(std::string(__func__) + "(" + std::to_string(bufferSize) + ")", true);
    const auto error = flat->Error();
    if (!error) {
        if (bufferSize > 0) {
            buffer[0] = '\0';
        }
        return QLERR_OK;
    }
    if (!CopyText(buffer, bufferSize, std::string_view(error->message))) {
        // Has no record to go to; the error stays.
        throw std::runtime_error("Failed to copy string\nError 122: it does not fit.");
    }
    flat->ForgetError();
    return error->code;
}
}
