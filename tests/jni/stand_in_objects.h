// SPDX-License-Identifier: Apache-2.0
// Classes and objects of the stand-in Java VM, as tests declare, make and read them.
#pragma once

#include <jni.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quarlin::test {

class JavaClass;
struct JavaObject;

// A Java value of a test: null is an empty JavaRef.
using JavaRef = std::shared_ptr<JavaObject>;
using JavaValue = std::variant<JavaRef, jboolean, jbyte, jchar, jshort, jint, jlong, jfloat, jdouble>;

// What an exception says. A message that is null in Java is not the empty text.
struct JavaException {
    std::string className;
    std::optional<std::string> message;
    // "CLASS: MESSAGE" of its cause; nothing when it has none.
    std::optional<std::string> cause = std::nullopt;

    bool operator==(const JavaException&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const JavaException& exception);

// Java's exception for a buffer that is too small has no constructor for a message: it is told by the cause.
JavaException BufferOverflow(const std::string& message);

// One call that arrives in "Java": the code of a method or of a constructor that a test supplies.
struct JavaCall {
    JavaRef self;  // null in a static method
    std::vector<JavaValue> arguments;
    JavaValue result;

    // The arguments by position; an argument of another type fails the test with std::bad_variant_access.
    jint Int(std::size_t index) const;
    bool Bool(std::size_t index) const;
    const JavaRef& Object(std::size_t index) const;
    std::string Text(std::size_t index) const;
    std::vector<std::uint8_t> Bytes(std::size_t index) const;
};

using JavaCode = std::function<void(JavaCall& call)>;

// Thrown by the JavaCode of a test: becomes the pending Java exception of the thread.
struct JavaThrow {
    std::string className;
    std::string message;
};

// "(ILjava/lang/String;[B)V" in pieces: "I", "Ljava/lang/String;", "[B" and "V".
struct JavaSignature {
    std::vector<std::string> parameters;
    std::string result;

    explicit JavaSignature(std::string_view text);
};

struct JavaMethod {
    const JavaClass* owner;
    std::string name;
    std::string signature;
    bool isStatic;
    JavaCode code;
    JavaSignature parsed;
};

struct JavaField {
    const JavaClass* owner;
    std::string name;
    std::string signature;
    bool isStatic;
    JavaValue staticValue;
};

// A class with the members that a test declares. Declarations are done before the class is used.
class JavaClass {
  public:
    JavaClass(std::string name, JavaClass* parent) : name_(std::move(name)), parent_(parent) {}

    JavaClass& Constructor(std::string signature, JavaCode code = {});
    JavaClass& Method(std::string name, std::string signature, JavaCode code = {});
    JavaClass& StaticMethod(std::string name, std::string signature, JavaCode code = {});
    JavaClass& Field(std::string name, std::string signature);
    JavaClass& StaticField(std::string name, std::string signature, JavaValue value);
    // Several at once: Fields("I", {"index", "iDeviceType"}).
    JavaClass& Fields(const std::string& signature, std::initializer_list<std::string> names);

    // As in "java/lang/String"; "[I" and "[Ljava/lang/String;" for arrays.
    const std::string& Name() const { return name_; }
    JavaClass* Parent() const { return parent_; }
    bool IsArray() const { return name_.front() == '['; }
    bool IsA(std::string_view className) const;
    bool IsA(const JavaClass& other) const;

    // Null when the class has no such member; inherited ones are found, except for constructors.
    JavaMethod* FindMethod(std::string_view name, std::string_view signature, bool isStatic);
    JavaField* FindField(std::string_view name, std::string_view signature, bool isStatic);
    bool Owns(const JavaMethod* method) const;
    bool Owns(const JavaField* field) const;
    const std::deque<JavaField>& DeclaredFields() const { return fields_; }

    // The class as an object of java/lang/Class.
    JavaRef object;

  private:
    std::string name_;
    JavaClass* parent_;
    // Method and field identifiers are addresses of elements, which a deque leaves where they are.
    std::deque<JavaMethod> methods_;
    std::deque<JavaField> fields_;
};

// Any Java object. Which of the parts mean something depends on its class.
struct JavaObject {
    using Elements = std::variant<std::monostate, std::vector<JavaRef>, std::vector<jboolean>, std::vector<jbyte>,
                                  std::vector<jchar>, std::vector<jshort>, std::vector<jint>, std::vector<jlong>,
                                  std::vector<jfloat>, std::vector<jdouble>>;

    JavaClass* type = nullptr;
    std::map<std::string, JavaValue, std::less<>> fields;
    // The constructor that NewObject ran ("" for objects that a test made), and what it was given.
    std::string constructor;
    std::vector<JavaValue> arguments;
    std::u16string characters;              // java/lang/String
    std::optional<std::u16string> message;  // java/lang/Throwable
    JavaRef cause;                          // likewise
    JavaClass* represented = nullptr;       // java/lang/Class
    Elements elements;                      // arrays
    std::vector<jint> releaseModes;         // arrays: the mode of every Release...ArrayElements, in order

    // The fields by name; one that is not there or of another type fails the test with an exception.
    const JavaValue& Value(std::string_view field) const;
    jint Int(std::string_view field) const { return std::get<jint>(Value(field)); }
    jdouble Double(std::string_view field) const { return std::get<jdouble>(Value(field)); }
    bool Bool(std::string_view field) const { return std::get<jboolean>(Value(field)) != JNI_FALSE; }
    const JavaRef& Object(std::string_view field) const { return std::get<JavaRef>(Value(field)); }
    std::string Text(std::string_view field) const;
};

// A Java string as UTF-8 (a lone surrogate as U+FFFD); "(null)" for null.
std::string TextOf(const JavaRef& string);
// The elements of arrays; null and arrays of another kind fail the test with std::logic_error.
std::vector<std::uint8_t> BytesOf(const JavaRef& array);
std::vector<jint> IntsOf(const JavaRef& array);
std::vector<jchar> CharsOf(const JavaRef& array);
std::vector<jboolean> BooleansOf(const JavaRef& array);
std::vector<jdouble> DoublesOf(const JavaRef& array);
std::vector<JavaRef> ObjectsOf(const JavaRef& array);
JavaException ExceptionOf(const JavaRef& throwable);

// Whether a value may stand where the signature asks for ("I", "Ljava/lang/String;", "[B"); null fits every object.
bool Fits(const JavaValue& value, std::string_view signature);
// Zero, false or null for a field of this signature.
JavaValue ZeroOf(std::string_view signature);

}  // namespace quarlin::test
