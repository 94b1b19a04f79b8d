// SPDX-License-Identifier: Apache-2.0
// The kernel's interface, and what a driver without a C++ library does without.
#pragma once

#include <intrin.h>

#include <cstddef>
// The cross compiler's two headers each define these, and not alike.
#define InterlockedBitTestAndSet WdmInterlockedBitTestAndSet
#define InterlockedBitTestAndReset WdmInterlockedBitTestAndReset
#include <ddk/wdm.h>
#undef InterlockedBitTestAndSet
#undef InterlockedBitTestAndReset

// Not in the cross compiler's headers.
extern "C" {
NTSYSAPI NTSTATUS NTAPI ZwDeviceIoControlFile(HANDLE file, HANDLE event, PIO_APC_ROUTINE apc, PVOID apcContext,
                                              IO_STATUS_BLOCK* status, ULONG code, PVOID in, ULONG inLength, PVOID out,
                                              ULONG outLength);
// The window system's, which Wine's drivers may use.
__declspec(dllimport) ULONG NTAPI GetRawInputDeviceInfoW(HANDLE device, ULONG command, void* data, ULONG* size);
}

namespace quarlin::sim::bus {

// "QlHB" in a listing of the kernel's memory.
inline constexpr ULONG kTag = 0x42486c51;
inline constexpr ULONG kRawInputDeviceInfo = 0x2000000b;

// The thread that runs, out of its environment block: while Wine's kernel looks at a request it takes the thread that
// made the request for the current one.
inline HANDLE RunningThread() {
    constexpr ULONG kThreadId = 0x48;
    return reinterpret_cast<HANDLE>(__readgsqword(kThreadId));
}

inline IRP* IrpOf(LIST_ENTRY* entry) {
    constexpr SIZE_T kOffset = offsetof(IRP, Tail.Overlay.ListEntry);
    return reinterpret_cast<IRP*>(reinterpret_cast<UCHAR*>(entry) - kOffset);
}

class Locked {
  public:
    explicit Locked(FAST_MUTEX& mutex) : mutex_(mutex) { ExAcquireFastMutex(&mutex_); }
    ~Locked() { ExReleaseFastMutex(&mutex_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    FAST_MUTEX& mutex_;
};

inline NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG_PTR information = 0) {
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = information;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}

// A list of requests that were taken out under the lock and are completed outside it, all alike.
class Finished {
  public:
    Finished() { InitializeListHead(&head_); }
    Finished(const Finished&) = delete;
    Finished& operator=(const Finished&) = delete;

    void Add(IRP* irp) {
        if (irp != nullptr) {
            InsertTailList(&head_, &irp->Tail.Overlay.ListEntry);
        }
    }
    void AddAll(LIST_ENTRY* from) {
        while (!IsListEmpty(from)) {
            InsertTailList(&head_, RemoveHeadList(from));
        }
    }
    void CompleteAll(NTSTATUS status) {
        while (!IsListEmpty(&head_)) {
            Complete(IrpOf(RemoveHeadList(&head_)), status);
        }
    }

  private:
    LIST_ENTRY head_;
};

// Takes a request out of its place.
inline IRP* Take(IRP*& place) {
    IRP* const irp = place;
    place = nullptr;
    return irp;
}

// The caller returns STATUS_PENDING.
inline void Keep(IRP*& place, IRP* irp) {
    IoMarkIrpPending(irp);
    place = irp;
}

}  // namespace quarlin::sim::bus
