// SPDX-License-Identifier: Apache-2.0
#include "vm_core.h"

#include <exception>

namespace quarlin::test {

namespace {

VmThread& ThreadOf(JNIEnv* env) {
    return *static_cast<VmThread*>(env);
}

}  // namespace

Entry::Entry(JNIEnv* env, const char* name, Rule rule)
    : thread(ThreadOf(env)), core(*thread.core), name_(name), lock_(core.mutex) {
    failure_ = core.Enter(name);
    if (thread.id != std::this_thread::get_id()) {
        Violate("the environment of another thread");
        refused_ = true;
        return;
    }
    if (!thread.attached) {
        Violate("the environment of a thread that was detached");
        refused_ = true;
        return;
    }
    if (rule == kAsks) {
        thread.unasked = nullptr;
    }
    if (rule == kNothingPending) {
        if (thread.pending) {
            Violate("called with an exception pending: " + thread.pending->type->Name());
        } else if (thread.unasked != nullptr) {
            Violate(std::string("called without asking for the exception of ") + thread.unasked);
        }
        thread.unasked = nullptr;
    }
}

void Entry::Violate(const std::string& text) {
    core.Violate(std::string(name_) + ": " + text);
}

JavaRef Entry::Object(jobject reference) {
    return core.Resolve(thread, name_, reference);
}

JavaRef Entry::Needed(jobject reference) {
    if (reference == nullptr) {
        Violate("null where an object is needed");
        return nullptr;
    }
    return Object(reference);
}

JavaClass* Entry::Class(jclass reference) {
    const JavaRef object = Needed(reference);
    if (object && object->represented == nullptr) {
        Violate("not a class: an object of " + object->type->Name());
    }
    return object ? object->represented : nullptr;
}

JavaRef Entry::Text(jstring reference) {
    JavaRef object = Needed(reference);
    if (object && object->type->Name() != "java/lang/String") {
        Violate("not a string: an object of " + object->type->Name());
        return nullptr;
    }
    return object;
}

JavaValue Entry::Run(const JavaMethod& method, const JavaRef& self, std::vector<JavaValue> arguments) {
    if (!method.code) {
        return {};
    }
    JavaCall call{self, std::move(arguments), ZeroOf(method.parsed.result == "V" ? "L" : method.parsed.result)};
    std::optional<JavaThrow> thrown;
    lock_.unlock();
    std::string failure;
    try {
        method.code(call);
    } catch (const JavaThrow& exception) {
        thrown = exception;
    } catch (const std::exception& exception) {
        failure = exception.what();
    }
    lock_.lock();
    if (!failure.empty()) {
        Violate("the test's own code failed: " + failure);
    }
    if (thrown) {
        Raise(thrown->className, thrown->message);
        return ZeroOf(method.parsed.result == "V" ? "L" : method.parsed.result);
    }
    return call.result;
}

}  // namespace quarlin::test
