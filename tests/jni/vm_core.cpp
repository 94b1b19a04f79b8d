// SPDX-License-Identifier: Apache-2.0
#include "vm_core.h"

#include "text_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define STAND_IN_HAS_SANITIZER 1
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define STAND_IN_HAS_SANITIZER 1
#endif

namespace quarlin::test {

namespace {

// A sanitizer sees what is read and written beside a block by itself, and only when nothing else lies there.
#ifdef STAND_IN_HAS_SANITIZER
constexpr std::size_t kGuardSize = 0;
#else
constexpr std::size_t kGuardSize = 16;
#endif
constexpr std::byte kGuard{0xA5};

struct KnownClass {
    const char* name;
    const char* parent;
};

constexpr std::array kExceptions{
    KnownClass{"java/lang/Throwable", "java/lang/Object"},
    KnownClass{"java/lang/Exception", "java/lang/Throwable"},
    KnownClass{"java/lang/RuntimeException", "java/lang/Exception"},
    KnownClass{"java/lang/IllegalArgumentException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/IllegalStateException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/UnsupportedOperationException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/NullPointerException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/NegativeArraySizeException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/ArrayStoreException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/IndexOutOfBoundsException", "java/lang/RuntimeException"},
    KnownClass{"java/lang/ArrayIndexOutOfBoundsException", "java/lang/IndexOutOfBoundsException"},
    KnownClass{"java/lang/StringIndexOutOfBoundsException", "java/lang/IndexOutOfBoundsException"},
    KnownClass{"java/io/IOException", "java/lang/Exception"},
    KnownClass{"java/lang/Error", "java/lang/Throwable"},
    KnownClass{"java/lang/LinkageError", "java/lang/Error"},
    KnownClass{"java/lang/NoClassDefFoundError", "java/lang/LinkageError"},
    KnownClass{"java/lang/IncompatibleClassChangeError", "java/lang/LinkageError"},
    KnownClass{"java/lang/NoSuchMethodError", "java/lang/IncompatibleClassChangeError"},
    KnownClass{"java/lang/NoSuchFieldError", "java/lang/IncompatibleClassChangeError"},
    KnownClass{"java/lang/VirtualMachineError", "java/lang/Error"},
    KnownClass{"java/lang/OutOfMemoryError", "java/lang/VirtualMachineError"},
};

// References are numbers, not addresses: four apart, as those of a real VM look aligned.
jobject AsReference(ReferenceId id) {
    return reinterpret_cast<jobject>(static_cast<std::uintptr_t>(id << 3));
}

ReferenceId IdOf(jobject reference) {
    const auto value = reinterpret_cast<std::uintptr_t>(reference);
    return (value & 7) == 0 ? static_cast<ReferenceId>(value >> 3) : 0;
}

JavaRef FindLocal(const VmThread& thread, ReferenceId id) {
    for (const LocalFrame& frame : thread.frames) {
        for (const auto* references : {&frame.arguments, &frame.locals}) {
            if (const auto found = references->find(id); found != references->end()) {
                return found->second;
            }
        }
    }
    return nullptr;
}

}  // namespace

VmCore::VmCore() {
    functions = &InvokeTable();
    Define("java/lang/Object", "").Constructor("()V");
    Define("java/lang/Class", "java/lang/Object");
    for (const auto& [name, type] : classes) {
        type->object->type = classes.at("java/lang/Class").get();
    }
    Define("java/lang/String", "java/lang/Object");
    for (const KnownClass& known : kExceptions) {
        Define(known.name, known.parent).Constructor("()V").Constructor("(Ljava/lang/String;)V");
    }
    // As in Java itself.
    Define("java/nio/BufferOverflowException", "java/lang/RuntimeException").Constructor("()V");
    classes.at("java/lang/Throwable")
        ->Method("initCause", "(Ljava/lang/Throwable;)Ljava/lang/Throwable;", [](JavaCall& call) {
            call.self->cause = call.Object(0);
            call.result = call.self;
        });
}

void VmCore::Violate(const std::string& text) {
    if (closed) {
        ADD_FAILURE() << "a stand-in VM that is gone was used: " << text;
        return;
    }
    violations.push_back(text);
}

std::optional<OrderedFailure> VmCore::Enter(std::string_view entry) {
    if (const auto known = calls.find(entry); known != calls.end()) {
        ++known->second;
    } else {
        calls.emplace(entry, 1);
    }
    if (closed) {
        Violate(std::string(entry));
    }
    const auto ordered = std::ranges::find_if(
        failures, [&](OrderedFailure& failure) { return failure.entry == entry && --failure.left == 0; });
    if (ordered == failures.end()) {
        return std::nullopt;
    }
    OrderedFailure failure = *ordered;
    failures.erase(ordered);
    return failure;
}

JavaClass& VmCore::Define(const std::string& name, std::string_view parent) {
    JavaClass* above = nullptr;
    if (!parent.empty()) {
        above = FindClass(std::string(parent));
        if (above == nullptr) {
            throw std::logic_error("the parent of " + name + " is not defined: " + std::string(parent));
        }
    }
    auto& type = classes[name];
    if (type) {
        throw std::logic_error(name + " is defined already");
    }
    type = std::make_unique<JavaClass>(name, above);
    type->object = std::make_shared<JavaObject>();
    const auto classOfClasses = classes.find("java/lang/Class");
    type->object->type = classOfClasses == classes.end() ? nullptr : classOfClasses->second.get();
    type->object->represented = type.get();
    return *type;
}

JavaClass* VmCore::FindClass(const std::string& name) {
    if (const auto found = classes.find(name); found != classes.end()) {
        return found->second.get();
    }
    if (name.size() < 2 || name.front() != '[') {
        return nullptr;
    }
    const std::string element = name.substr(1);
    const bool known = element.front() == 'L'   ? FindClass(element.substr(1, element.size() - 2)) != nullptr
                       : element.front() == '[' ? FindClass(element) != nullptr
                                                : element.size() == 1;
    return known ? &Define(name, "java/lang/Object") : nullptr;
}

JavaRef VmCore::New(JavaClass& type) {
    auto object = std::make_shared<JavaObject>();
    object->type = &type;
    for (const JavaClass* at = &type; at != nullptr; at = at->Parent()) {
        for (const JavaField& field : at->DeclaredFields()) {
            if (!field.isStatic) {
                object->fields.emplace(field.name, ZeroOf(field.signature));
            }
        }
    }
    return object;
}

JavaRef VmCore::NewText(std::u16string text) {
    JavaRef string = New(*classes.at("java/lang/String"));
    string->characters = std::move(text);
    return string;
}

void VmCore::Raise(VmThread& thread, const std::string& className, const std::string& message) {
    JavaClass* type = FindClass(className);
    if (type == nullptr || !type->IsA("java/lang/Throwable")) {
        throw std::logic_error("not an exception: " + className);
    }
    thread.pending = New(*type);
    thread.pending->message = FromUtf8(message);
}

VmThread* VmCore::CurrentThread() {
    const auto found = current.find(std::this_thread::get_id());
    return found == current.end() ? nullptr : found->second;
}

VmThread& VmCore::Attach(bool byCall) {
    threads.push_back(std::make_unique<VmThread>());
    VmThread& thread = *threads.back();
    thread.functions = &NativeTable();
    thread.core = this;
    thread.id = std::this_thread::get_id();
    thread.madeByCall = byCall;
    thread.frames.emplace_back();
    current[thread.id] = &thread;
    ++counts.attached;
    return thread;
}

void VmCore::Detach(VmThread& thread) {
    if (thread.pending) {
        uncaught.push_back(ExceptionOf(thread.pending));
        thread.pending = nullptr;
    }
    for (const auto& [memory, pin] : pins) {
        if (pin.thread == &thread && pin.kind != 'u' && pin.kind != 'c') {
            Violate("a thread was detached with the elements of an array pinned");
        }
    }
    while (!thread.frames.empty()) {
        LeaveFrame(thread);
    }
    thread.attached = false;
    current.erase(thread.id);
    --counts.attached;
}

void VmCore::LeaveFrame(VmThread& thread) {
    thread.frames.pop_back();
}

jobject VmCore::NewLocal(VmThread& thread, const JavaRef& object) {
    if (!object) {
        return nullptr;
    }
    LocalFrame& frame = thread.frames.back();
    const ReferenceId id = next_++;
    frame.locals.emplace(id, object);
    frame.peak = std::max(frame.peak, frame.locals.size());
    peakLocals = std::max(peakLocals, frame.peak);
    if (frame.locals.size() > frame.room && !frame.overfull) {
        frame.overfull = true;
        Violate("more local references than the frame has room for: " + std::to_string(frame.room));
    }
    return AsReference(id);
}

jobject VmCore::NewArgument(VmThread& thread, const JavaRef& object) {
    if (!object) {
        return nullptr;
    }
    const ReferenceId id = next_++;
    thread.frames.back().arguments.emplace(id, object);
    return AsReference(id);
}

JavaRef VmCore::Resolve(VmThread& thread, const char* entry, jobject reference) {
    if (reference == nullptr) {
        return nullptr;
    }
    const ReferenceId id = IdOf(reference);
    if (const auto global = globals.find(id); global != globals.end()) {
        return global->second;
    }
    if (JavaRef local = FindLocal(thread, id)) {
        return local;
    }
    const std::string name = entry;
    if (std::ranges::any_of(threads, [&](const auto& other) { return FindLocal(*other, id) != nullptr; })) {
        Violate(name + ": a local reference of another thread");
    } else if (id > 0 && id < next_) {
        Violate(name + ": a reference that was freed");
    } else {
        Violate(name + ": not a reference");
    }
    return nullptr;
}

bool VmCore::DeleteLocal(VmThread& thread, jobject reference) {
    const ReferenceId id = IdOf(reference);
    return std::ranges::any_of(
        thread.frames, [&](LocalFrame& frame) { return frame.locals.erase(id) + frame.arguments.erase(id) > 0; });
}

jobject VmCore::NewGlobal(const JavaRef& object) {
    const ReferenceId id = next_++;
    globals.emplace(id, object);
    return AsReference(id);
}

bool VmCore::DeleteGlobal(jobject reference) {
    return globals.erase(IdOf(reference)) > 0;
}

void* VmCore::MakePin(VmThread& thread, const JavaRef& object, char kind, const void* bytes, std::size_t size) {
    Pin pin{object, kind, &thread, thread.frames.size(), {}, size};
    pin.memory = std::make_unique<std::byte[]>(size + 2 * kGuardSize);
    std::fill_n(pin.memory.get(), size + 2 * kGuardSize, kGuard);
    std::byte* const elements = pin.memory.get() + kGuardSize;
    if (size > 0) {
        std::memcpy(elements, bytes, size);
    }
    pins.emplace(elements, std::move(pin));
    return elements;
}

Pin* VmCore::FindPin(const char* entry, const JavaRef& object, char kind, const void* memory) {
    const auto found = pins.find(memory);
    const std::string name = entry;
    if (found == pins.end()) {
        Violate(name + ": memory that is not pinned");
        return nullptr;
    }
    if (found->second.object != object) {
        Violate(name + ": memory that was pinned for another object");
        return nullptr;
    }
    if (found->second.kind != kind) {
        Violate(name + ": memory that was pinned by another function");
        return nullptr;
    }
    return &found->second;
}

void VmCore::CheckPin(const char* entry, const Pin& pin) {
    const auto guarded = [](const std::byte* from) {
        return std::all_of(from, from + kGuardSize, [](std::byte byte) { return byte == kGuard; });
    };
    if (!guarded(pin.memory.get()) || !guarded(pin.memory.get() + kGuardSize + pin.size)) {
        Violate(std::string(entry) + ": the memory beside the pinned elements was written to");
    }
}

}  // namespace quarlin::test
