// SPDX-License-Identifier: Apache-2.0
#include "jni/scan_receiver_win.h"

#include <utility>

#include "support/wait_win.h"

namespace quarlin::test {
namespace {

std::string AsText(const std::vector<std::uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const JavaScan& scan) {
    return out << "device " << scan.device << ", \"" << scan.text << "\" (" << scan.length << ", \"" << scan.bytes
               << "\"), \"" << scan.symbology << "\" (" << scan.symbologyLength << ", \"" << scan.symbologyBytes
               << "\")";
}

JavaScan PlainScan(const std::string& text, const std::string& symbology) {
    return {0, text, static_cast<jint>(text.size()), text, symbology, static_cast<jint>(symbology.size()), symbology};
}

ScanReceiver::ScanReceiver(StandInVm& vm) : vm_(vm) {
    vm.DefineClass(kClass).StaticMethod("nativeBarcodeEvent", "(ILjava/lang/String;I[BLjava/lang/String;I[B)V",
                                        [this](const JavaCall& call) { Take(call); });
}

void ScanReceiver::Take(const JavaCall& call) {
    std::function<void()> inside;
    {
        const std::lock_guard guard(lock_);
        scans_.push_back({call.Int(0), call.Text(1), call.Int(2), AsText(call.Bytes(3)), call.Text(4), call.Int(5),
                          AsText(call.Bytes(6))});
        threads_.push_back(GetCurrentThreadId());
        inside = inside_;
    }
    if (inside) {
        inside();
    }
}

void ScanReceiver::DoInside(std::function<void()> action) {
    const std::lock_guard guard(lock_);
    inside_ = std::move(action);
}

void ScanReceiver::Clear() {
    const std::lock_guard guard(lock_);
    scans_.clear();
    threads_.clear();
}

std::size_t ScanReceiver::Count() const {
    const std::lock_guard guard(lock_);
    return scans_.size();
}

std::vector<JavaScan> ScanReceiver::Scans() const {
    const std::lock_guard guard(lock_);
    return scans_;
}

std::vector<DWORD> ScanReceiver::Threads() const {
    const std::lock_guard guard(lock_);
    return threads_;
}

JavaScan ScanReceiver::AwaitCount(std::size_t count) const {
    Await("scans in Java", [&] { return Count() >= count; });
    Await("the end of the delivery", [&] { return vm_.Threads().attached == 0; });
    return Scans().at(count - 1);
}

}  // namespace quarlin::test
