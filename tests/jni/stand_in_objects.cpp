// SPDX-License-Identifier: Apache-2.0
#include "stand_in_objects.h"

#include "text_forms.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

namespace quarlin::test {

namespace {

// One type at the front of a signature: "I", "[[B", "Ljava/lang/String;".
std::string_view FirstType(std::string_view text) {
    std::size_t end = 0;
    while (end < text.size() && text[end] == '[') {
        ++end;
    }
    if (end < text.size() && text[end] == 'L') {
        end = text.find(';', end);
    }
    if (end >= text.size()) {
        throw std::logic_error("not a type: " + std::string(text));
    }
    return text.substr(0, end + 1);
}

template <typename Element>
const std::vector<Element>& ElementsOf(const JavaRef& array, const char* what) {
    if (!array || !std::holds_alternative<std::vector<Element>>(array->elements)) {
        throw std::logic_error(std::string("not an array of ") + what);
    }
    return std::get<std::vector<Element>>(array->elements);
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const JavaException& exception) {
    stream << exception.className << ": " << exception.message.value_or("(null)");
    return exception.cause ? stream << " (" << *exception.cause << ')' : stream;
}

JavaException BufferOverflow(const std::string& message) {
    return {"java/nio/BufferOverflowException", std::nullopt, "java/lang/RuntimeException: " + message};
}

jint JavaCall::Int(std::size_t index) const {
    return std::get<jint>(arguments.at(index));
}

bool JavaCall::Bool(std::size_t index) const {
    return std::get<jboolean>(arguments.at(index)) != JNI_FALSE;
}

const JavaRef& JavaCall::Object(std::size_t index) const {
    return std::get<JavaRef>(arguments.at(index));
}

std::string JavaCall::Text(std::size_t index) const {
    return TextOf(Object(index));
}

std::vector<std::uint8_t> JavaCall::Bytes(std::size_t index) const {
    return BytesOf(Object(index));
}

JavaSignature::JavaSignature(std::string_view text) {
    if (!text.starts_with('(')) {
        throw std::logic_error("not the signature of a method: " + std::string(text));
    }
    text.remove_prefix(1);
    while (!text.starts_with(')')) {
        const std::string_view type = FirstType(text);
        parameters.emplace_back(type);
        text.remove_prefix(type.size());
    }
    text.remove_prefix(1);
    result = FirstType(text);
}

JavaClass& JavaClass::Constructor(std::string signature, JavaCode code) {
    return Method("<init>", std::move(signature), std::move(code));
}

JavaClass& JavaClass::Method(std::string name, std::string signature, JavaCode code) {
    JavaSignature parsed(signature);
    methods_.push_back({this, std::move(name), std::move(signature), false, std::move(code), std::move(parsed)});
    return *this;
}

JavaClass& JavaClass::StaticMethod(std::string name, std::string signature, JavaCode code) {
    Method(std::move(name), std::move(signature), std::move(code));
    methods_.back().isStatic = true;
    return *this;
}

JavaClass& JavaClass::Field(std::string name, std::string signature) {
    fields_.push_back({this, std::move(name), std::move(signature), false, {}});
    return *this;
}

JavaClass& JavaClass::StaticField(std::string name, std::string signature, JavaValue value) {
    if (!Fits(value, signature)) {
        throw std::logic_error("the value of " + name + " is no " + signature);
    }
    fields_.push_back({this, std::move(name), std::move(signature), true, std::move(value)});
    return *this;
}

JavaClass& JavaClass::Fields(const std::string& signature, std::initializer_list<std::string> names) {
    for (const std::string& name : names) {
        Field(name, signature);
    }
    return *this;
}

bool JavaClass::IsA(std::string_view className) const {
    for (const JavaClass* at = this; at != nullptr; at = at->parent_) {
        if (at->name_ == className) {
            return true;
        }
    }
    return false;
}

bool JavaClass::IsA(const JavaClass& other) const {
    return IsA(other.name_);
}

JavaMethod* JavaClass::FindMethod(std::string_view name, std::string_view signature, bool isStatic) {
    for (JavaClass* at = this; at != nullptr; at = name == "<init>" ? nullptr : at->parent_) {
        const auto found = std::ranges::find_if(at->methods_, [&](const JavaMethod& method) {
            return method.name == name && method.signature == signature && method.isStatic == isStatic;
        });
        if (found != at->methods_.end()) {
            return &*found;
        }
    }
    return nullptr;
}

JavaField* JavaClass::FindField(std::string_view name, std::string_view signature, bool isStatic) {
    for (JavaClass* at = this; at != nullptr; at = at->parent_) {
        const auto found = std::ranges::find_if(at->fields_, [&](const JavaField& field) {
            return field.name == name && field.signature == signature && field.isStatic == isStatic;
        });
        if (found != at->fields_.end()) {
            return &*found;
        }
    }
    return nullptr;
}

bool JavaClass::Owns(const JavaMethod* method) const {
    return std::ranges::any_of(methods_, [&](const JavaMethod& own) { return &own == method; });
}

bool JavaClass::Owns(const JavaField* field) const {
    return std::ranges::any_of(fields_, [&](const JavaField& own) { return &own == field; });
}

const JavaValue& JavaObject::Value(std::string_view field) const {
    const auto found = fields.find(field);
    if (found == fields.end()) {
        throw std::logic_error(type->Name() + " has no field " + std::string(field));
    }
    return found->second;
}

std::string JavaObject::Text(std::string_view field) const {
    return TextOf(Object(field));
}

std::string TextOf(const JavaRef& string) {
    if (!string) {
        return "(null)";
    }
    if (string->type->Name() != "java/lang/String") {
        throw std::logic_error("not a string: " + string->type->Name());
    }
    return ToUtf8(string->characters);
}

std::vector<std::uint8_t> BytesOf(const JavaRef& array) {
    const auto& elements = ElementsOf<jbyte>(array, "bytes");
    return {elements.begin(), elements.end()};
}

std::vector<jint> IntsOf(const JavaRef& array) {
    return ElementsOf<jint>(array, "ints");
}

std::vector<jchar> CharsOf(const JavaRef& array) {
    return ElementsOf<jchar>(array, "chars");
}

std::vector<jboolean> BooleansOf(const JavaRef& array) {
    return ElementsOf<jboolean>(array, "booleans");
}

std::vector<jdouble> DoublesOf(const JavaRef& array) {
    return ElementsOf<jdouble>(array, "doubles");
}

std::vector<JavaRef> ObjectsOf(const JavaRef& array) {
    return ElementsOf<JavaRef>(array, "objects");
}

JavaException ExceptionOf(const JavaRef& throwable) {
    JavaException exception{throwable->type->Name(), std::nullopt};
    if (throwable->message) {
        exception.message = ToUtf8(*throwable->message);
    }
    if (throwable->cause) {
        const JavaException cause = ExceptionOf(throwable->cause);
        exception.cause = cause.className + ": " + cause.message.value_or("(null)");
    }
    return exception;
}

bool Fits(const JavaValue& value, std::string_view signature) {
    static constexpr std::string_view kKinds = "LZBCSIJFD";  // in the order of JavaValue's alternatives
    if (value.index() != 0) {
        return signature.size() == 1 && kKinds[value.index()] == signature.front();
    }
    if (!signature.starts_with('L') && !signature.starts_with('[')) {
        return false;
    }
    const JavaRef& object = std::get<JavaRef>(value);
    if (!object) {
        return true;
    }
    if (signature.front() == 'L') {
        return object->type->IsA(signature.substr(1, signature.size() - 2));
    }
    if (object->type->Name() == signature) {
        return true;
    }
    // An array of a class is an array of its parents too; every object of tests has one element class.
    const std::string_view own = object->type->Name();
    return own.starts_with("[L") && signature == "[Ljava/lang/Object;";
}

JavaValue ZeroOf(std::string_view signature) {
    switch (signature.front()) {
        case 'Z':
            return jboolean{0};
        case 'B':
            return jbyte{0};
        case 'C':
            return jchar{0};
        case 'S':
            return jshort{0};
        case 'I':
            return jint{0};
        case 'J':
            return jlong{0};
        case 'F':
            return jfloat{0};
        case 'D':
            return jdouble{0};
        default:
            return JavaRef{};
    }
}

}  // namespace quarlin::test
