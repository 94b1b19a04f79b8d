// SPDX-License-Identifier: Apache-2.0
// Native methods as rows of a table: what Java calls, which function of the library that is to call, and how the
// function can be made to do something else.
#pragma once

#include "flat_library.h"
#include "stand_in_vm.h"

#include <cstdint>
#include <functional>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace quarlin::test {

// What a native method gave back: a number or a truth value, or an object.
struct Answer {
    std::int64_t number = 0;
    JavaRef object;
};

using Invoke = std::function<Answer(NativeCall& call)>;

template <typename Returned>
Answer AnswerOf(NativeCall& call, Returned returned) {
    if constexpr (std::is_pointer_v<Returned>) {
        return {0, call.Returned(returned)};
    } else {
        return {returned, nullptr};
    }
}

// Texts and names of classes are references by the time that the method gets them.
template <typename Parameter, typename Given>
Parameter ArgumentOf(NativeCall& call, const Given& given) {
    if constexpr (std::is_same_v<Given, JavaRef>) {
        return call.Pass<Parameter>(given);
    } else if constexpr (std::is_same_v<Parameter, jstring>) {
        return call.Text(std::string_view(given));
    } else if constexpr (std::is_same_v<Parameter, jclass>) {
        return call.Class(given);
    } else {
        return static_cast<Parameter>(given);
    }
}

// The call of a static native method of Java with these arguments.
template <typename Returned, typename... Parameters, typename... Given>
Invoke Calling(const std::string& className, Returned (*method)(JNIEnv*, jclass, Parameters...), Given... given) {
    return [=](NativeCall& call) {
        return AnswerOf(call, method(call.Env(), call.Class(className), ArgumentOf<Parameters>(call, given)...));
    };
}

// Makes a function of the library do something else, whatever its parameters are.
using Script = std::function<void(FlatLibrary& flat, const std::string& name, std::function<QLerr()> body)>;

template <typename... Parameters>
Script ScriptFor(QLerr (*)(Parameters...)) {
    return [](FlatLibrary& flat, const std::string& name, const std::function<QLerr()>& body) {
        flat.Does(name, [body](Parameters... /*parameters*/) -> QLerr { return body(); });
    };
}

struct NativeMethod {
    // For the name of the test.
    std::string name;
    std::string function;
    // How the library sees its call.
    std::string call;
    Script script;
    Invoke invoke;
    // What Java is told when a C++ exception ends the method.
    std::string containment = "An unknown error occurred";
};

inline void PrintTo(const NativeMethod& method, std::ostream* stream) {
    *stream << method.name;
}

// What a C++ function can throw: one that a VM's own code might know, and one that nobody does.
inline const std::function<QLerr()> kThrowsBadAlloc = []() -> QLerr { throw std::bad_alloc(); };
inline const std::function<QLerr()> kThrowsInt = []() -> QLerr { throw 42; };

// Codes of failures, with each row of the tables of exceptions and some that are in none.
inline constexpr QLerr kFailures[] = {QLERR_INVALID_ARGUMENT, QLERR_INVALID_STATE,    QLERR_IO_ERROR,
                                      QLERR_OP_UNSUPPORTED,   QLERR_INTERNAL_ERROR,   QLERR_BUFFER_OVERFLOW,
                                      static_cast<QLerr>(7),  static_cast<QLerr>(-1), QLERR_UHFRFID_NO_TAGS};

inline constexpr const char* kBarcodeException = "com/norvane/quarlin/bcr/BarcodeException";

// How a failure of the library reaches Java through the barcode scanner's methods.
JavaException BarcodeFailure(QLerr code, const std::string& message);
// And through those of the card reader, GPS, devices and camera light.
JavaException PlainFailure(QLerr code, const std::string& message);

// A VM with the classes of the binding that barcode, card-reader and library methods deal with, and a library in front
// of it. The barcode group is initialised.
class NativeMethodTest {
  protected:
    NativeMethodTest();
    // Nothing global has been kept since the beginning, and no local reference is left.
    ~NativeMethodTest();

    // So many global references are to stay.
    void ExpectGlobals(int more) { globals_ += more; }

    StandInVm vm;
    FlatLibrary flat;

  private:
    int globals_ = 0;
};

}  // namespace quarlin::test
