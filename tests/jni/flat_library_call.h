// SPDX-License-Identifier: Apache-2.0
// What the stand-ins of the exports are made of: each parameter says what it is to the caller, and Call does the rest.
#pragma once

#include "flat_library.h"

#include <type_traits>

namespace quarlin::test {

// One value that goes out.
template <typename Type>
struct Out {
    Type* pointer;
};
template <typename Type>
Out(Type*) -> Out<Type>;

// One value that goes in and out.
template <typename Type>
struct InOut {
    Type* pointer;
};
template <typename Type>
InOut(Type*) -> InOut<Type>;

// A buffer for a text, narrow or wide, and the elements that it has room for.
template <typename Type>
struct TextOut {
    Type* pointer;
    std::size_t room;
};
template <typename Type>
TextOut(Type*, std::size_t) -> TextOut<Type>;

// A buffer for bytes and its size.
template <typename Type>
struct BytesOut {
    Type* pointer;
    std::size_t room;
};
template <typename Type>
BytesOut(Type*, std::size_t) -> BytesOut<Type>;

// Records that a body of the test fills.
template <typename Type>
struct RecordsOut {
    Type* pointer;
};
template <typename Type>
RecordsOut(Type*) -> RecordsOut<Type>;

// Bytes that go in.
struct BytesIn {
    unsigned char* pointer;
    std::size_t count;
};

// A value that is written as a handle.
struct HandleIn {
    void* value;
};

// The parameter itself, as a body of a test gets it.
template <typename Type>
Type Raw(Type value) {
    return value;
}
template <typename Type>
Type* Raw(Out<Type> value) {
    return value.pointer;
}
template <typename Type>
Type* Raw(InOut<Type> value) {
    return value.pointer;
}
template <typename Type>
Type* Raw(TextOut<Type> value) {
    return value.pointer;
}
template <typename Type>
Type* Raw(BytesOut<Type> value) {
    return value.pointer;
}
template <typename Type>
Type* Raw(RecordsOut<Type> value) {
    return value.pointer;
}
inline unsigned char* Raw(BytesIn value) {
    return value.pointer;
}
inline void* Raw(HandleIn value) {
    return value.value;
}

// How the parameter reads in the record of the call; nothing for what only goes out.
using Shown = std::optional<std::string>;
Shown Show(const char* text);
Shown Show(const wchar_t* text);
Shown Show(BytesIn bytes);
Shown Show(HandleIn handle);
inline Shown Show(QLBCR_Callback callback) {
    return callback == nullptr ? "null" : "function";
}
inline Shown Show(QLMSR_Callback callback) {
    return callback == nullptr ? "null" : "function";
}
inline Shown Show(const MagStripeData* record) {
    return record == nullptr ? "null" : "record";
}
template <typename Type>
requires std::is_integral_v<Type> Shown Show(Type value) {
    return std::to_string(value);
}
template <typename Type>
Shown Show(InOut<Type> value) {
    return value.pointer == nullptr ? "null" : std::to_string(*value.pointer);
}
template <typename Type>
Shown Show(Out<Type> /*value*/) {
    return std::nullopt;
}
template <typename Type>
Shown Show(TextOut<Type> /*value*/) {
    return std::nullopt;
}
template <typename Type>
Shown Show(BytesOut<Type> /*value*/) {
    return std::nullopt;
}
template <typename Type>
Shown Show(RecordsOut<Type> value) {
    return value.pointer == nullptr ? Shown("null") : std::nullopt;
}

// What is wrong with the parameter before the call; empty when nothing is.
template <typename Type>
std::string WrongWith(const Type& /*value*/) {
    return {};
}
template <typename Type>
std::string WrongWith(const Out<Type>& value) {
    if (value.pointer == nullptr) {
        return "a null pointer for a value";
    }
    return *value.pointer == Type{} ? "" : "a value that was not zeroed";
}
template <typename Type>
std::string WrongWith(const InOut<Type>& value) {
    return value.pointer == nullptr ? "a null pointer for a value" : "";
}

// Takes the next of the test's values. False when the value is of another kind or does not fit.
class ScriptedValues {
  public:
    ScriptedValues(FlatLibrary& flat, std::string name, const std::vector<FlatValue>& values)
        : flat_(flat), name_(std::move(name)), values_(values) {}
    ~ScriptedValues();

    template <typename Type>
    void Fill(const Type& /*value*/) {}
    template <typename Type>
    void Fill(const Out<Type>& out) {
        FillNumber(out.pointer);
    }
    template <typename Type>
    void Fill(const InOut<Type>& out) {
        FillNumber(out.pointer);
    }
    template <typename Type>
    void Fill(const TextOut<Type>& out) {
        if (const auto text = NextText(); text && out.pointer != nullptr) {
            PutText(out.pointer, out.room, *text);
        }
    }
    template <typename Type>
    void Fill(const BytesOut<Type>& out) {
        if (const auto bytes = NextBytes(); bytes && out.pointer != nullptr) {
            PutBytes(out.pointer, out.room, *bytes);
        }
    }

  private:
    template <typename Type>
    void FillNumber(Type* out) {
        const auto value = NextNumber();
        if (!value || out == nullptr) {
            return;
        }
        if constexpr (std::is_pointer_v<Type>) {
            // Handles have the width of a pointer: the number's bits, signed.
            *out = reinterpret_cast<Type>(static_cast<std::uintptr_t>(std::get<std::int64_t>(*value)));
        } else {
            *out = std::visit([](auto number) { return static_cast<Type>(number); }, *value);
        }
    }

    std::optional<std::variant<std::int64_t, double>> NextNumber();
    std::optional<std::string> NextText();
    std::optional<std::vector<std::uint8_t>> NextBytes();
    const FlatValue* Next();
    void PutText(char* out, std::size_t room, const std::string& text);
    void PutText(wchar_t* out, std::size_t room, const std::string& text);
    void PutBytes(void* out, std::size_t room, const std::vector<std::uint8_t>& bytes);

    FlatLibrary& flat_;
    std::string name_;
    const std::vector<FlatValue>& values_;
    std::size_t next_ = 0;
};

// Room for a buffer's text, where the size is another parameter that may be null.
template <typename Size>
std::size_t RoomOf(const Size* size) {
    return size == nullptr || *size <= Size{0} ? 0 : static_cast<std::size_t>(*size);
}

// After a call of the family: success erases the last error, or leaves the RFID family's own.
void LeaveSuccess(FlatLibrary& flat, const std::string& name);

template <typename... Parameters>
QLerr Call(const char* name, Parameters... parameters) {
    FlatLibrary* const flat = FlatLibrary::Current();
    if (flat == nullptr) {
        return QLERR_INTERNAL_ERROR;
    }
    std::string call = std::string(name) + "(";
    [[maybe_unused]] const auto note = [&](const Shown& shown, const std::string& wrong) {
        if (shown) {
            call += (call.back() == '(' ? "" : ", ") + *shown;
        }
        if (!wrong.empty()) {
            flat->Problem(std::string(name) + ": " + wrong);
        }
    };
    (note(Show(parameters), WrongWith(parameters)), ...);
    flat->Note(call + ")", false);

    const FlatLibrary::Script script = flat->ScriptOf(name);
    if (script.failure) {
        flat->LeaveError(script.failure->code, script.failure->message);
        return script.failure->code;
    }
    using Body = std::function<QLerr(decltype(Raw(parameters))...)>;
    if (script.body.has_value()) {
        const auto* const body = std::any_cast<Body>(&script.body);
        if (body == nullptr) {
            flat->Problem(std::string(name) + ": the test's body has other parameters");
            return QLERR_INTERNAL_ERROR;
        }
        flat->ForgetError();
        const QLerr result = (*body)(Raw(parameters)...);
        if (result == QLERR_OK) {
            LeaveSuccess(*flat, name);
        } else if (!flat->Error()) {
            flat->LeaveError(result, std::string(name) + " failed");
        }
        return result;
    }
    ScriptedValues values(*flat, name, script.values);
    (values.Fill(parameters), ...);
    LeaveSuccess(*flat, name);
    return QLERR_OK;
}

}  // namespace quarlin::test
