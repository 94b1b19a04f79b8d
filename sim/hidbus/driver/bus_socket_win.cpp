// SPDX-License-Identifier: Apache-2.0
// The control device: what programs that play devices ask for.
#include "hidbus/driver/bus_win.h"

namespace quarlin::sim::bus {
namespace {

PVOID& SocketSlot(IRP* irp) {
    return IoGetCurrentIrpStackLocation(irp)->FileObject->FsContext;
}

Device* DeviceOf(LIST_ENTRY* entry) {
    return static_cast<Device*>(entry);
}

bool IsInstanceCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '&' || c == '_' ||
           c == '.' || c == '-';
}

// False when the text cannot be part of a device's name.
bool CopyInstance(const PlugRequest& request, WCHAR* out) {
    for (ULONG i = 0; i < kMaxInstance && request.instance[i] != 0; ++i) {
        if (!IsInstanceCharacter(request.instance[i])) {
            return false;
        }
        out[i] = static_cast<WCHAR>(request.instance[i]);
    }
    return true;
}

void MakeUpInstance(const Socket& socket, WCHAR* out) {
    constexpr WCHAR kPattern[] = L"6&51a4c0de&0&0000";
    constexpr ULONG kLength = sizeof(kPattern) / sizeof(WCHAR) - 1;
    RtlCopyMemory(out, kPattern, sizeof(kPattern));
    ULONG number = socket.number;
    for (ULONG i = kLength; number != 0 && i > kLength - 4; number /= 10) {
        out[--i] = static_cast<WCHAR>(L'0' + number % 10);
    }
}

// The lowest number that no other socket has, so that names come back and the registry does not grow. The caller holds
// the lock.
ULONG FreeNumber() {
    for (ULONG number = 0;; ++number) {
        bool used = false;
        for (LIST_ENTRY* e = theBus.sockets.Flink; e != &theBus.sockets; e = e->Flink) {
            used = used || static_cast<Socket*>(e)->number == number;
        }
        if (!used) {
            return number;
        }
    }
}

// Sockets are made when they are first used; only the dispatching thread makes and frees them.
Socket* SocketOf(IRP* irp) {
    PVOID& slot = SocketSlot(irp);
    if (slot == nullptr) {
        auto* const socket = static_cast<Socket*>(ExAllocatePoolWithTag(NonPagedPool, sizeof(Socket), kTag));
        if (socket != nullptr) {
            RtlZeroMemory(socket, sizeof(*socket));
            const Locked lock(theBus.lock);
            socket->number = FreeNumber();
            InsertTailList(&theBus.sockets, socket);
        }
        slot = socket;
    }
    return static_cast<Socket*>(slot);
}

bool IsTaken(const Device& wanted) {
    for (LIST_ENTRY* e = theBus.devices.Flink; e != &theBus.devices; e = e->Flink) {
        const Device& device = *DeviceOf(e);
        if (!device.leaving && HaveOneName(device, wanted)) {
            return true;
        }
    }
    return false;
}

NTSTATUS Fill(Device& device, const Socket& socket, const UCHAR* in, ULONG length) {
    PlugRequest request;
    if (length < sizeof(request)) {
        return STATUS_INVALID_PARAMETER;
    }
    RtlCopyMemory(&request, in, sizeof(request));
    if (request.descriptorLength != length - sizeof(request) || request.descriptorLength > kMaxDescriptor ||
        request.collection > kMaxCollection) {
        return STATUS_INVALID_PARAMETER;
    }
    device.vendor = request.vendor;
    device.product = request.product;
    device.version = request.version;
    device.collection = request.collection;
    device.descriptorLength = request.descriptorLength;
    RtlCopyMemory(device.descriptor, in + sizeof(request), request.descriptorLength);
    if (!device.layout.Parse(device.descriptor, device.descriptorLength)) {
        return STATUS_DATA_ERROR;
    }
    if (!CopyInstance(request, device.instance)) {
        return STATUS_OBJECT_NAME_INVALID;
    }
    if (device.instance[0] == 0) {
        MakeUpInstance(socket, device.instance);
    }
    return STATUS_SUCCESS;
}

NTSTATUS Plug(Socket& socket, IRP* irp) {
    DEVICE_OBJECT* object = nullptr;
    NTSTATUS status = IoCreateDevice(theBus.driver, sizeof(Device), nullptr, FILE_DEVICE_UNKNOWN, 0, FALSE, &object);
    if (!NT_SUCCESS(status)) {
        return Complete(irp, status);
    }
    Device& device = *static_cast<Device*>(object->DeviceExtension);
    device.role = Role::kDevice;
    device.object = object;
    InitializeListHead(&device.waiting);
    InitializeListHead(&device.fetched);
    status = Fill(device, socket, static_cast<const UCHAR*>(irp->AssociatedIrp.SystemBuffer),
                  IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.InputBufferLength);
    if (NT_SUCCESS(status)) {
        const Locked lock(theBus.lock);
        if (theBus.lower == nullptr) {
            status = STATUS_DEVICE_NOT_READY;
        } else if (socket.device != nullptr) {
            status = STATUS_DEVICE_BUSY;
        } else if (IsTaken(device)) {
            status = STATUS_OBJECT_NAME_COLLISION;
        } else {
            device.socket = &socket;
            socket.device = &device;
            Keep(socket.plug, irp);
            object->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
            InsertTailList(&theBus.devices, &device);
            Reconsider();
        }
    }
    if (!NT_SUCCESS(status)) {
        IoDeleteDevice(object);
        return Complete(irp, status);
    }
    return STATUS_PENDING;
}

// Takes the socket's device from the bus. One that plug and play has not seen goes at once, and is returned for the
// caller to delete without the lock.
DEVICE_OBJECT* TakeOut(Socket& socket, Finished& failed) {
    Device* const device = socket.device;
    if (device == nullptr) {
        return nullptr;
    }
    BeginLeaving(*device, failed);
    if (device->stage != Stage::kWaiting) {
        return nullptr;
    }
    RemoveEntryList(device);
    socket.device = nullptr;
    device->socket = nullptr;
    return device->object;
}

NTSTATUS Unplug(Socket& socket, IRP* irp) {
    Finished failed;
    DEVICE_OBJECT* object = nullptr;
    NTSTATUS status = STATUS_SUCCESS;
    {
        const Locked lock(theBus.lock);
        if (socket.unplug != nullptr) {
            status = STATUS_DEVICE_BUSY;
        } else {
            object = TakeOut(socket, failed);
            if (socket.device != nullptr) {
                Keep(socket.unplug, irp);
                status = STATUS_PENDING;
            }
        }
    }
    failed.CompleteAll(STATUS_DEVICE_NOT_CONNECTED);
    if (object != nullptr) {
        IoDeleteDevice(object);
    }
    return status == STATUS_PENDING ? status : Complete(irp, status);
}

// Takes out what has been deferred for the handle that a request is for.
void TakeDeferredOf(IRP* irp, Finished& failed) {
    const FILE_OBJECT* const file = IoGetCurrentIrpStackLocation(irp)->FileObject;
    for (LIST_ENTRY* e = theBus.deferred.Flink; e != &theBus.deferred;) {
        IRP* const deferred = IrpOf(e);
        e = e->Flink;
        if (IoGetCurrentIrpStackLocation(deferred)->FileObject == file) {
            RemoveEntryList(&deferred->Tail.Overlay.ListEntry);
            failed.Add(deferred);
        }
    }
}

NTSTATUS SocketRequest(IRP* irp) {
    Socket* const socket = SocketOf(irp);
    if (socket == nullptr) {
        return Complete(irp, STATUS_INSUFFICIENT_RESOURCES);
    }
    switch (IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode) {
        case kPlug:
            return Plug(*socket, irp);
        case kUnplug:
            return Unplug(*socket, irp);
        case kExchange:
            return Exchange(*socket, irp);
        case kSendInput:
            return SendInput(*socket, irp);
        default:
            return Complete(irp, STATUS_INVALID_DEVICE_REQUEST);
    }
}

}  // namespace

NTSTATUS ControlCreate(IRP* irp) {
    theBus.dispatcher = RunningThread();
    return Complete(irp, STATUS_SUCCESS);
}

NTSTATUS ControlClose(IRP* irp) {
    auto* const socket = static_cast<Socket*>(SocketSlot(irp));
    if (socket != nullptr) {
        Finished failed;
        DEVICE_OBJECT* object = nullptr;
        {
            const Locked lock(theBus.lock);
            object = TakeOut(*socket, failed);
            failed.Add(Take(socket->unplug));
            if (socket->device != nullptr) {
                socket->device->socket = nullptr;
            }
            RemoveEntryList(socket);
            TakeDeferredOf(irp, failed);
        }
        failed.CompleteAll(STATUS_DEVICE_NOT_CONNECTED);
        if (object != nullptr) {
            IoDeleteDevice(object);
        }
        ExFreePoolWithTag(socket, kTag);
        SocketSlot(irp) = nullptr;
    }
    return Complete(irp, STATUS_SUCCESS);
}

NTSTATUS ControlRequest(IRP* irp) {
    if (IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.IoControlCode != kCatchUp) {
        return SocketRequest(irp);
    }
    while (IRP* const deferred = TakeDeferred()) {
        SocketRequest(deferred);
    }
    return Complete(irp, STATUS_SUCCESS);
}

void CatchUp() {
    if (theBus.dispatcher == RunningThread()) {
        return;
    }
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, kDeviceName);
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, nullptr, nullptr);
    HANDLE handle = nullptr;
    IO_STATUS_BLOCK result = {};
    if (NT_SUCCESS(ZwOpenFile(&handle, SYNCHRONIZE | FILE_READ_DATA, &attributes, &result,
                              FILE_SHARE_READ | FILE_SHARE_WRITE, FILE_SYNCHRONOUS_IO_NONALERT))) {
        ZwDeviceIoControlFile(handle, nullptr, nullptr, nullptr, &result, kCatchUp, nullptr, 0, nullptr, 0);
        ZwClose(handle);
    }
}

}  // namespace quarlin::sim::bus
