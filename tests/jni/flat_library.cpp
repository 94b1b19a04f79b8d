// SPDX-License-Identifier: Apache-2.0
#include "flat_library.h"

#include "flat_library_call.h"
#include "text_forms.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <utility>

namespace quarlin::test {

namespace {

std::atomic<FlatLibrary*> alive{nullptr};

// The record of each thread, and which library it was left by.
struct Record {
    const FlatLibrary* of = nullptr;
    std::optional<FlatError> error;
};
thread_local Record record;

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

}  // namespace

FlatLibrary::FlatLibrary() {
    FlatLibrary* none = nullptr;
    if (!alive.compare_exchange_strong(none, this)) {
        ADD_FAILURE() << "two stand-ins of the library at once";
    }
    record = {this, std::nullopt};
}

FlatLibrary::~FlatLibrary() {
    alive = nullptr;
    for (const std::string& problem : problems_) {
        ADD_FAILURE() << problem;
    }
}

FlatLibrary* FlatLibrary::Current() {
    FlatLibrary* const current = alive;
    if (current == nullptr) {
        ADD_FAILURE() << "an export was called without a FlatLibrary";
    }
    return current;
}

void FlatLibrary::Fails(const std::string& name, QLerr code, const std::string& message) {
    const std::lock_guard lock(mutex_);
    scripts_[name].failure = FlatError{code, message};
}

void FlatLibrary::Succeeds(const std::string& name) {
    const std::lock_guard lock(mutex_);
    scripts_[name].failure.reset();
}

void FlatLibrary::Gives(const std::string& name, std::vector<FlatValue> values) {
    const std::lock_guard lock(mutex_);
    scripts_[name] = {std::nullopt, std::move(values), {}};
}

void FlatLibrary::DoesAny(const std::string& name, std::any body) {
    const std::lock_guard lock(mutex_);
    scripts_[name] = {std::nullopt, {}, std::move(body)};
}

FlatLibrary::Script FlatLibrary::ScriptOf(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = scripts_.find(name);
    return found == scripts_.end() ? Script{} : found->second;
}

void FlatLibrary::LeaveError(QLerr code, const std::string& message) {
    record = {this, FlatError{code, message}};
}

std::optional<FlatError> FlatLibrary::Error() const {
    return record.of == this ? record.error : std::nullopt;
}

void FlatLibrary::ForgetError() {
    record = {this, std::nullopt};
}

Calls FlatLibrary::TakeCalls() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
}

Calls FlatLibrary::TakeHelperCalls() {
    const std::lock_guard lock(mutex_);
    return std::exchange(helperCalls_, {});
}

QLBCR_Callback FlatLibrary::BarcodeCallback() const {
    const std::lock_guard lock(mutex_);
    return barcodeCallback_;
}

QLMSR_Callback FlatLibrary::CardCallback() const {
    const std::lock_guard lock(mutex_);
    return cardCallback_;
}

std::vector<std::string> FlatLibrary::TakeProblems() {
    const std::lock_guard lock(mutex_);
    return std::exchange(problems_, {});
}

void FlatLibrary::Note(const std::string& call, bool helper) {
    const std::lock_guard lock(mutex_);
    (helper ? helperCalls_ : calls_).push_back(call);
}

void FlatLibrary::Problem(const std::string& text) {
    const std::lock_guard lock(mutex_);
    problems_.push_back(text);
}

void FlatLibrary::Keep(QLBCR_Callback callback) {
    const std::lock_guard lock(mutex_);
    barcodeCallback_ = callback;
}

void FlatLibrary::Keep(QLMSR_Callback callback) {
    const std::lock_guard lock(mutex_);
    cardCallback_ = callback;
}

// --- what the exports are made of ---

Shown Show(const char* text) {
    return text == nullptr ? "null" : Quoted(text);
}

Shown Show(const wchar_t* text) {
    return text == nullptr ? "null" : Quoted(Narrow(text));
}

Shown Show(BytesIn bytes) {
    if (bytes.pointer == nullptr) {
        return "null";
    }
    std::string text = "[";
    for (std::size_t i = 0; i < bytes.count; ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, i == 0 ? "%02x" : " %02x", static_cast<unsigned>(bytes.pointer[i]));
        text += digits;
    }
    return text + "]";
}

Shown Show(HandleIn handle) {
    char digits[20];
    std::snprintf(digits, sizeof digits, "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(handle.value)));
    return digits;
}

ScriptedValues::~ScriptedValues() {
    if (next_ < values_.size()) {
        flat_.Problem(name_ + ": the test gives more values than go out");
    }
}

const FlatValue* ScriptedValues::Next() {
    return next_ < values_.size() ? &values_[next_++] : nullptr;
}

std::optional<std::variant<std::int64_t, double>> ScriptedValues::NextNumber() {
    const FlatValue* const value = Next();
    if (value == nullptr) {
        return std::nullopt;
    }
    if (const auto* const number = std::get_if<std::int64_t>(value)) {
        return *number;
    }
    if (const auto* const number = std::get_if<double>(value)) {
        return *number;
    }
    flat_.Problem(name_ + ": the test gives a text where a number goes out");
    return std::nullopt;
}

std::optional<std::string> ScriptedValues::NextText() {
    const FlatValue* const value = Next();
    if (value == nullptr) {
        return std::nullopt;
    }
    if (const auto* const text = std::get_if<std::string>(value)) {
        return *text;
    }
    flat_.Problem(name_ + ": the test gives no text where a text goes out");
    return std::nullopt;
}

std::optional<std::vector<std::uint8_t>> ScriptedValues::NextBytes() {
    const FlatValue* const value = Next();
    if (value == nullptr) {
        return std::nullopt;
    }
    if (const auto* const bytes = std::get_if<std::vector<std::uint8_t>>(value)) {
        return *bytes;
    }
    flat_.Problem(name_ + ": the test gives no bytes where bytes go out");
    return std::nullopt;
}

void ScriptedValues::PutText(char* out, std::size_t room, const std::string& text) {
    if (text.size() + 1 > room) {
        flat_.Problem(name_ + ": no room for the test's text");
        return;
    }
    std::memcpy(out, text.c_str(), text.size() + 1);
}

void ScriptedValues::PutText(wchar_t* out, std::size_t room, const std::string& text) {
    const std::wstring wide = Widen(text);
    if (wide.size() + 1 > room) {
        flat_.Problem(name_ + ": no room for the test's text");
        return;
    }
    std::memcpy(out, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
}

void ScriptedValues::PutBytes(void* out, std::size_t room, const std::vector<std::uint8_t>& bytes) {
    if (bytes.size() > room) {
        flat_.Problem(name_ + ": no room for the test's bytes");
        return;
    }
    if (!bytes.empty()) {
        std::memcpy(out, bytes.data(), bytes.size());
    }
}

void LeaveSuccess(FlatLibrary& flat, const std::string& name) {
    if (name.starts_with("QLUHFRFID_")) {
        flat.LeaveError(QLERR_OK, "QLERR_OK");
    } else {
        flat.ForgetError();
    }
}

}  // namespace quarlin::test
