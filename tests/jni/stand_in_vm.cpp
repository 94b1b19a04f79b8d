// SPDX-License-Identifier: Apache-2.0
#include "stand_in_vm.h"

#include "text_forms.h"
#include "vm_core.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace quarlin::test {

namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

// The native side keeps the address of a VM for the rest of the process: what it may still touch is never freed.
std::vector<std::shared_ptr<VmCore>>& Graveyard() {
    static auto* const graveyard = new std::vector<std::shared_ptr<VmCore>>;
    return *graveyard;
}

template <typename Type>
JavaRef NewArray(VmCore& core, const std::string& className, std::vector<Type> elements) {
    const Lock lock(core.mutex);
    JavaClass* const type = core.FindClass(className);
    if (type == nullptr) {
        throw std::logic_error("not a class: " + className);
    }
    JavaRef array = core.New(*type);
    array->elements = std::move(elements);
    return array;
}

}  // namespace

StandInVm::StandInVm() : core_(std::make_shared<VmCore>()) {
    Graveyard().push_back(core_);
}

StandInVm::~StandInVm() {
    const Lock lock(core_->mutex);
    for (const std::string& violation : core_->violations) {
        ADD_FAILURE() << "violation: " << violation;
    }
    for (const OrderedFailure& failure : core_->failures) {
        ADD_FAILURE() << "never called to fail: " << failure.entry;
    }
    core_->closed = true;
    core_->globals.clear();
    core_->pins.clear();
    for (const auto& thread : core_->threads) {
        thread->frames.clear();
        thread->attached = false;
        thread->pending = nullptr;
    }
    core_->current.clear();
    // Class objects and instances hold one another only through plain pointers, so that this frees them all.
    core_->classes.clear();
}

JavaVM* StandInVm::Vm() {
    return core_.get();
}

JavaClass& StandInVm::DefineClass(const std::string& name, std::string_view parent) {
    const Lock lock(core_->mutex);
    return core_->Define(name, parent);
}

JavaClass& StandInVm::DefineException(const std::string& name, std::string_view parent) {
    return DefineClass(name, parent).Constructor("()V").Constructor("(Ljava/lang/String;)V");
}

JavaClass& StandInVm::Class(const std::string& name) {
    const Lock lock(core_->mutex);
    JavaClass* const type = core_->FindClass(name);
    if (type == nullptr) {
        throw std::logic_error("not a class: " + name);
    }
    return *type;
}

void StandInVm::HideClass(const std::string& name) {
    const Lock lock(core_->mutex);
    core_->hidden.insert(name);
}

void StandInVm::ShowClass(const std::string& name) {
    const Lock lock(core_->mutex);
    core_->hidden.erase(name);
}

JavaRef StandInVm::New(const std::string& className) {
    const Lock lock(core_->mutex);
    return core_->New(Class(className));
}

JavaRef StandInVm::String(std::string_view utf8) {
    return String(std::u16string_view(FromUtf8(utf8)));
}

JavaRef StandInVm::String(std::u16string_view text) {
    const Lock lock(core_->mutex);
    return core_->NewText(std::u16string(text));
}

JavaRef StandInVm::Bytes(std::vector<std::uint8_t> bytes) {
    return NewArray(*core_, "[B", std::vector<jbyte>(bytes.begin(), bytes.end()));
}

JavaRef StandInVm::Ints(std::vector<jint> values) {
    return NewArray(*core_, "[I", std::move(values));
}

JavaRef StandInVm::Chars(std::vector<jchar> values) {
    return NewArray(*core_, "[C", std::move(values));
}

JavaRef StandInVm::Booleans(std::vector<jboolean> values) {
    return NewArray(*core_, "[Z", std::move(values));
}

JavaRef StandInVm::Doubles(std::vector<jdouble> values) {
    return NewArray(*core_, "[D", std::move(values));
}

JavaRef StandInVm::Array(const std::string& elementClass, std::vector<JavaRef> elements) {
    return NewArray(*core_, "[L" + elementClass + ";", std::move(elements));
}

void StandInVm::FailOn(const std::string& entry, int nth) {
    const Lock lock(core_->mutex);
    core_->failures.push_back({entry, nth, std::nullopt});
}

void StandInVm::FailOn(const std::string& entry, int nth, jint code) {
    const Lock lock(core_->mutex);
    core_->failures.push_back({entry, nth, code});
}

bool StandInVm::TakeFailures() {
    const Lock lock(core_->mutex);
    const bool reached = core_->failures.empty();
    core_->failures.clear();
    return reached;
}

std::vector<std::string> StandInVm::TakeViolations() {
    const Lock lock(core_->mutex);
    return std::exchange(core_->violations, {});
}

ThreadCounts StandInVm::Threads() const {
    const Lock lock(core_->mutex);
    return core_->counts;
}

ReferenceCounts StandInVm::References() const {
    const Lock lock(core_->mutex);
    ReferenceCounts counts;
    counts.globals = static_cast<int>(core_->globals.size());
    counts.peakLocals = static_cast<int>(core_->peakLocals);
    for (const auto& [id, thread] : core_->current) {
        for (const LocalFrame& frame : thread->frames) {
            counts.locals += static_cast<int>(frame.locals.size());
        }
    }
    for (const auto& [memory, pin] : core_->pins) {
        ++(pin.kind == 'u' || pin.kind == 'c' ? counts.textPins : counts.arrayPins);
    }
    return counts;
}

std::vector<JavaException> StandInVm::TakeUncaught() {
    const Lock lock(core_->mutex);
    return std::exchange(core_->uncaught, {});
}

int StandInVm::CallsOf(const std::string& entry) const {
    const Lock lock(core_->mutex);
    const auto found = core_->calls.find(entry);
    return found == core_->calls.end() ? 0 : found->second;
}

bool StandInVm::IsAttached() const {
    const Lock lock(core_->mutex);
    return core_->CurrentThread() != nullptr;
}

std::optional<JavaException> StandInVm::Pending() const {
    const Lock lock(core_->mutex);
    const VmThread* const thread = core_->CurrentThread();
    if (thread == nullptr || !thread->pending) {
        return std::nullopt;
    }
    return ExceptionOf(thread->pending);
}

JavaRef StandInVm::Resolve(jobject reference) {
    const Lock lock(core_->mutex);
    VmThread* const thread = core_->CurrentThread();
    if (thread == nullptr) {
        core_->Violate("a reference on a thread that is not attached");
        return nullptr;
    }
    return core_->Resolve(*thread, "the test", reference);
}

// --- NativeCall ---

namespace {

VmThread& ThreadOf(JNIEnv* env) {
    return *static_cast<VmThread*>(env);
}

}  // namespace

NativeCall::NativeCall(StandInVm& vm) : vm_(vm) {
    VmCore& core = vm.Core();
    const Lock lock(core.mutex);
    VmThread* const known = core.CurrentThread();
    VmThread& thread = known == nullptr ? core.Attach(true) : *known;
    if (thread.pending) {
        core.Violate("Java calls with an exception pending");
    }
    thread.frames.emplace_back();
    ++thread.calls;
    env_ = &thread;
}

NativeCall::~NativeCall() {
    VmCore& core = vm_.Core();
    const Lock lock(core.mutex);
    VmThread& thread = ThreadOf(env_);
    if (!thread.attached) {
        core.Violate("a native method detached its caller");
        return;
    }
    const std::size_t depth = thread.frames.size();
    if (thread.frames.back().pushed) {
        core.Violate("a native method left a pushed frame");
        while (thread.frames.back().pushed) {
            core.LeaveFrame(thread);
        }
    }
    for (auto at = core.pins.begin(); at != core.pins.end();) {
        const Pin& pin = at->second;
        const bool mine = pin.thread == &thread && pin.depth >= thread.frames.size() && pin.depth <= depth;
        const bool text = pin.kind == 'u' || pin.kind == 'c';
        if (mine && !(text && mayKeepTexts_)) {
            core.Violate(text ? "a native method left a text pinned" : "a native method left an array pinned");
        }
        at = mine && !text ? core.pins.erase(at) : std::next(at);
    }
    core.LeaveFrame(thread);
    thread.pending = nullptr;
    thread.unasked = nullptr;
    --thread.calls;
    if (thread.madeByCall && thread.calls == 0) {
        core.Detach(thread);
    }
}

jobject NativeCall::Pass(const JavaRef& object) {
    const Lock lock(vm_.Core().mutex);
    return vm_.Core().NewArgument(ThreadOf(env_), object);
}

jclass NativeCall::Class(const std::string& name) {
    return static_cast<jclass>(Pass(vm_.Class(name).object));
}

jstring NativeCall::Text(std::string_view utf8) {
    return Text(vm_.String(utf8));
}

JavaRef NativeCall::Returned(jobject reference) {
    const Lock lock(vm_.Core().mutex);
    return vm_.Core().Resolve(ThreadOf(env_), "the result of a native method", reference);
}

std::optional<JavaException> NativeCall::Thrown() const {
    return vm_.Pending();
}

int NativeCall::Locals() const {
    const Lock lock(vm_.Core().mutex);
    return static_cast<int>(ThreadOf(env_).frames.back().locals.size());
}

int NativeCall::PeakLocals() const {
    const Lock lock(vm_.Core().mutex);
    return static_cast<int>(ThreadOf(env_).frames.back().peak);
}

}  // namespace quarlin::test
