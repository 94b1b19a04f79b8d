// SPDX-License-Identifier: Apache-2.0
#include "edge/machine_record_win.h"

#include <windows.h>

#include "core/device.h"
#include "edge/handle_win.h"
#include "shared/shared_section_win.h"

namespace quarlin::sim {
namespace {

template <typename State>
class SectionRecord final : public MachineRecord<State> {
  public:
    SectionRecord() {
        if constexpr (kScans) {
            scan_ = OwnedHandle(CreateEventW(nullptr, FALSE, FALSE, InstanceName(State::kScanEvent).Text()));
        }
        if (!section_.Open() || (kScans && !scan_)) {
            throw DeviceError("the machine library's shared memory cannot be opened, error " +
                              std::to_string(GetLastError()));
        }
    }

    void Use(const std::function<void(State&)>& use) override {
        const typename SharedState<State>::Access state(section_);
        if (!state) {
            throw DeviceError("another program keeps the machine library's shared memory to itself");
        }
        use(*state);
    }
    std::uint64_t Milliseconds() const override { return GetTickCount64(); }
    bool IsRunning(std::uint32_t process) const override {
        const OwnedHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
        return handle && WaitForSingleObject(handle.get(), 0) == WAIT_TIMEOUT;
    }
    void AnnounceScan() override {
        if (scan_) {
            SetEvent(scan_.get());
        }
    }

  private:
    static constexpr bool kScans = requires { State::kScanEvent; };

    OwnedHandle scan_;
    SharedState<State> section_;
};

template <typename State>
std::unique_ptr<MachineRecord<State>> Open() {
    return std::make_unique<SectionRecord<State>>();
}

}  // namespace

MachineRecordMakers MachineRecords() {
    return {Open<ProbeState>, Open<LightState>, Open<IntermecState>, Open<HoneywellState>};
}

}  // namespace quarlin::sim
