// SPDX-License-Identifier: Apache-2.0
// Reports between programs and the socket.
#include "hidbus/driver/bus_win.h"

#include <hidusage.h>

#include <hidport.h>

namespace quarlin::sim::bus {
namespace {

ReportType TypeOf(Kind kind) {
    return kind == Kind::kSetOutput ? ReportType::kOutput : ReportType::kFeature;
}

Kind KindOf(IRP* transfer) {
    switch (IoGetCurrentIrpStackLocation(transfer)->Parameters.DeviceIoControl.IoControlCode) {
        case IOCTL_HID_SET_FEATURE:
            return Kind::kSetFeature;
        case IOCTL_HID_GET_FEATURE:
            return Kind::kGetFeature;
        default:
            return Kind::kSetOutput;
    }
}

const HID_XFER_PACKET& PacketOf(IRP* transfer) {
    return *static_cast<HID_XFER_PACKET*>(transfer->UserBuffer);
}

// The request's number, kept in the transfer itself.
PVOID& NumberOf(IRP* transfer) {
    return transfer->Tail.Overlay.DriverContext[0];
}

// The class driver gives and takes reports without the ID byte when the descriptor names no IDs.
ULONG HiddenBytes(const Device& device) {
    return device.layout.HasIds() ? 0 : 1;
}

ULONG ReportLength(const Device& device, IRP* transfer) {
    return device.layout.Length(TypeOf(KindOf(transfer)), PacketOf(transfer).reportId);
}

// Writes the oldest waiting transfer to where the exchange's answer goes. The caller holds the lock and has seen that
// there is one and that there is room.
ULONG Fetch(Device& device, UCHAR* out) {
    LIST_ENTRY* const entry = RemoveHeadList(&device.waiting);
    InsertTailList(&device.fetched, entry);
    IRP* const transfer = IrpOf(entry);
    const HID_XFER_PACKET& packet = PacketOf(transfer);
    const ULONG length = ReportLength(device, transfer);

    Request request = {};
    request.id = ++theBus.lastRequest;
    request.kind = KindOf(transfer);
    request.length = length;
    NumberOf(transfer) = reinterpret_cast<PVOID>(request.id);

    UCHAR* const report = out + sizeof(request);
    RtlCopyMemory(out, &request, sizeof(request));
    if (request.kind == Kind::kGetFeature) {
        report[0] = packet.reportId;
        return sizeof(request) + 1;
    }
    RtlZeroMemory(report, length);
    const ULONG hidden = HiddenBytes(device);
    const ULONG given = packet.reportBufferLen < length - hidden ? packet.reportBufferLen : length - hidden;
    RtlCopyMemory(report + hidden, packet.reportBuffer, given);
    return sizeof(request) + length;
}

IRP* TakeFetched(Device& device, ULONGLONG number) {
    for (LIST_ENTRY* e = device.fetched.Flink; e != &device.fetched; e = e->Flink) {
        IRP* const transfer = IrpOf(e);
        if (reinterpret_cast<ULONGLONG>(NumberOf(transfer)) == number) {
            RemoveEntryList(e);
            return transfer;
        }
    }
    return nullptr;
}

// The count that the class driver reports to the program as the report's whole length.
ULONG Transferred(const Device& device, IRP* transfer) {
    const ULONG length = ReportLength(device, transfer);
    const bool written =
        IoGetCurrentIrpStackLocation(transfer)->Parameters.DeviceIoControl.IoControlCode == IOCTL_HID_WRITE_REPORT;
    // It takes off the ID byte of a written report whose descriptor names IDs, and counts it in otherwise.
    return written && device.layout.HasIds() ? length + 1 : length;
}

// Copies an answered feature to the program; false when the answer does not fit the request.
bool Give(const Device& device, IRP* transfer, const UCHAR* report, ULONG length) {
    if (KindOf(transfer) != Kind::kGetFeature) {
        return length == 0;
    }
    const HID_XFER_PACKET& packet = PacketOf(transfer);
    if (length != ReportLength(device, transfer)) {
        return false;
    }
    const ULONG hidden = HiddenBytes(device);
    const ULONG wanted = length - hidden;
    RtlCopyMemory(packet.reportBuffer, report + hidden,
                  wanted < packet.reportBufferLen ? wanted : packet.reportBufferLen);
    return true;
}

// Gives one input report to the class driver.
//
// Its queues miss a reader that asks in the very moment in which a report arrives. Programs' reads are looked at on
// this same thread, so the thread stays until the report is in the queues, which is when the class driver asks for the
// next.
NTSTATUS PutInput(Device& device, const UCHAR* report, ULONG length) {
    if (length == 0 || length != device.layout.Length(ReportType::kInput, report[0])) {
        return STATUS_INVALID_PARAMETER;
    }
    if (device.stage != Stage::kReady) {
        return STATUS_DEVICE_NOT_CONNECTED;
    }
    const ULONG hidden = HiddenBytes(device);
    if (!device.input.Put(report + hidden, length - hidden)) {
        return device.leaving ? STATUS_DEVICE_NOT_CONNECTED : STATUS_IO_TIMEOUT;
    }
    return STATUS_SUCCESS;
}

// The parts of an exchange's message.
struct Message {
    Answer answer;
    const UCHAR* report;
    const UCHAR* inputs;
    const UCHAR* end;
};

bool Read(const UCHAR* in, ULONG length, Message& message) {
    if (length < sizeof(message.answer)) {
        return false;
    }
    RtlCopyMemory(&message.answer, in, sizeof(message.answer));
    if (message.answer.length > length - sizeof(message.answer)) {
        return false;
    }
    message.report = in + sizeof(message.answer);
    message.inputs = message.report + message.answer.length;
    message.end = in + length;
    return true;
}

// Gives the class driver the input reports of a message, as far as they are well-formed.
void PutInputs(Device& device, const Message& message) {
    const UCHAR* next = message.inputs;
    for (ULONG i = 0; i < message.answer.inputs; ++i) {
        ULONG length = 0;
        if (static_cast<SIZE_T>(message.end - next) < sizeof(length)) {
            return;
        }
        RtlCopyMemory(&length, next, sizeof(length));
        next += sizeof(length);
        if (length > static_cast<SIZE_T>(message.end - next) || PutInput(device, next, length) != STATUS_SUCCESS) {
            return;
        }
        next += length;
    }
}

// Ends the transfer that the message answers.
void EndTransfer(Socket& socket, const Message& message) {
    if (message.answer.id == 0) {
        return;
    }
    Finished failed;
    IRP* transfer = nullptr;
    NTSTATUS status = STATUS_UNSUCCESSFUL;
    ULONG_PTR transferred = 0;
    {
        const Locked lock(theBus.lock);
        Device* const device = socket.device;
        if (device == nullptr) {
            return;
        }
        transfer = TakeFetched(*device, message.answer.id);
        if (transfer != nullptr && message.answer.verdict == Verdict::kDone &&
            Give(*device, transfer, message.report, message.answer.length)) {
            status = STATUS_SUCCESS;
            transferred = Transferred(*device, transfer);
        }
        if (message.answer.verdict == Verdict::kVanish) {
            status = STATUS_DEVICE_NOT_CONNECTED;
            BeginLeaving(*device, failed);
        }
    }
    if (transfer != nullptr) {
        Complete(transfer, status, transferred);
    }
    failed.CompleteAll(STATUS_DEVICE_NOT_CONNECTED);
}

// Writes the next request to the exchange, or keeps the exchange until there is one.
NTSTATUS NextRequest(Socket& socket, IRP* irp) {
    NTSTATUS status = STATUS_PENDING;
    ULONG used = 0;
    {
        const Locked lock(theBus.lock);
        Device* const device = socket.device;
        if (device == nullptr || device->leaving) {
            status = STATUS_DEVICE_NOT_CONNECTED;
        } else if (socket.exchange != nullptr) {
            status = STATUS_DEVICE_BUSY;
        } else if (IsListEmpty(&device->waiting)) {
            Keep(socket.exchange, irp);
        } else {
            status = STATUS_SUCCESS;
            used = Fetch(*device, static_cast<UCHAR*>(irp->AssociatedIrp.SystemBuffer));
        }
    }
    return status == STATUS_PENDING ? status : Complete(irp, status, used);
}

// Keeps a request that brings input for later, when input does not pass now. One that has been kept before is not kept
// again: it is taken out when its turn has come.
bool Defer(IRP* irp) {
    const Locked lock(theBus.lock);
    if (irp == theBus.resumed || (!theBus.introducing && IsListEmpty(&theBus.deferred))) {
        return false;
    }
    IoMarkIrpPending(irp);
    InsertTailList(&theBus.deferred, &irp->Tail.Overlay.ListEntry);
    return true;
}

}  // namespace

IRP* TakeDeferred() {
    const Locked lock(theBus.lock);
    theBus.resumed = nullptr;
    if (!theBus.introducing && !IsListEmpty(&theBus.deferred)) {
        theBus.resumed = IrpOf(RemoveHeadList(&theBus.deferred));
    }
    return theBus.resumed;
}

NTSTATUS BeginTransfer(Device& device, IRP* irp, Kind kind) {
    const ULONG length = device.layout.Length(TypeOf(kind), PacketOf(irp).reportId);
    if (length == 0) {
        return Complete(irp, STATUS_INVALID_PARAMETER);
    }
    IRP* exchange = nullptr;
    ULONG used = 0;
    {
        const Locked lock(theBus.lock);
        if (!device.leaving) {
            IoMarkIrpPending(irp);
            InsertTailList(&device.waiting, &irp->Tail.Overlay.ListEntry);
            irp = nullptr;
            if (device.socket != nullptr && device.socket->exchange != nullptr) {
                exchange = Take(device.socket->exchange);
                used = Fetch(device, static_cast<UCHAR*>(exchange->AssociatedIrp.SystemBuffer));
            }
        }
    }
    if (irp != nullptr) {
        return Complete(irp, STATUS_DEVICE_NOT_CONNECTED);
    }
    if (exchange != nullptr) {
        Complete(exchange, STATUS_SUCCESS, used);
    }
    return STATUS_PENDING;
}

NTSTATUS Exchange(Socket& socket, IRP* irp) {
    const IO_STACK_LOCATION* const stack = IoGetCurrentIrpStackLocation(irp);
    Message message = {};
    if (stack->Parameters.DeviceIoControl.OutputBufferLength < sizeof(Request) + kMaxReport ||
        !Read(static_cast<const UCHAR*>(irp->AssociatedIrp.SystemBuffer),
              stack->Parameters.DeviceIoControl.InputBufferLength, message)) {
        return Complete(irp, STATUS_INVALID_PARAMETER);
    }
    if (message.answer.inputs != 0 && Defer(irp)) {
        return STATUS_PENDING;
    }
    Device* const device = socket.device;
    if (device == nullptr) {
        return Complete(irp, STATUS_DEVICE_NOT_CONNECTED);
    }
    // A device that vanishes has sent its reports before.
    const bool vanishes = message.answer.verdict == Verdict::kVanish;
    if (vanishes) {
        PutInputs(*device, message);
    }
    EndTransfer(socket, message);
    if (!vanishes) {
        PutInputs(*device, message);
    }
    return NextRequest(socket, irp);
}

NTSTATUS SendInput(Socket& socket, IRP* irp) {
    const ULONG length = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.InputBufferLength;
    Device* const device = socket.device;
    if (device == nullptr || device->leaving) {
        return Complete(irp, STATUS_DEVICE_NOT_CONNECTED);
    }
    if (Defer(irp)) {
        return STATUS_PENDING;
    }
    return Complete(irp, PutInput(*device, static_cast<const UCHAR*>(irp->AssociatedIrp.SystemBuffer), length));
}

}  // namespace quarlin::sim::bus
