// SPDX-License-Identifier: Apache-2.0
// A device on the bus as plug and play and the class driver see it.
#include "hidbus/driver/bus_win.h"

#include <hidusage.h>

#include <hidport.h>

namespace quarlin::sim::bus {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

// Writes text that several identifiers in a row are made of, each ended by a zero.
class Text {
  public:
    explicit Text(WCHAR* end) : end_(end) {}

    Text& operator<<(const WCHAR* text) {
        while (*text != 0) {
            *end_++ = *text++;
        }
        return *this;
    }
    Text& operator<<(USHORT number) {
        for (int shift = 12; shift >= 0; shift -= 4) {
            *end_++ = static_cast<WCHAR>(kHex[(number >> shift) & 0xf]);
        }
        return *this;
    }
    // The way of Windows for a device that has several collections at the top: each is a device of its own.
    Text& Collection(USHORT number) {
        if (number != 0) {
            *this << L"&COL";
            *end_++ = static_cast<WCHAR>(L'0' + number / 10);
            *end_++ = static_cast<WCHAR>(L'0' + number % 10);
        }
        return *this;
    }
    void End() { *end_++ = 0; }

  private:
    WCHAR* end_;
};

Text& WriteName(Text& text, const Device& device) {
    return (text << L"QLSIMHID\\VID_" << device.vendor << L"&PID_" << device.product).Collection(device.collection);
}

NTSTATUS QueryId(const Device& device, IRP* irp, BUS_QUERY_ID_TYPE type) {
    // The longest are the two hardware identifiers and the instance.
    auto* const id = static_cast<WCHAR*>(ExAllocatePoolWithTag(PagedPool, (kMaxInstance + 64) * sizeof(WCHAR), kTag));
    if (id == nullptr) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    Text text(id);
    switch (type) {
        case BusQueryDeviceID:
            WriteName(text, device);
            break;
        case BusQueryInstanceID:
            text << device.instance;
            break;
        case BusQueryHardwareIDs:
            WriteName(text, device);
            text.End();
            text << L"QLSIMHID\\DEVICE";
            text.End();
            break;
        case BusQueryCompatibleIDs:
            text << L"QLSIMHID\\DEVICE";
            text.End();
            break;
        default:
            ExFreePoolWithTag(id, kTag);
            return irp->IoStatus.Status;
    }
    text.End();
    irp->IoStatus.Information = reinterpret_cast<ULONG_PTR>(id);
    return STATUS_SUCCESS;
}

NTSTATUS QueryCapabilities(IO_STACK_LOCATION* stack) {
    DEVICE_CAPABILITIES* const capabilities = stack->Parameters.DeviceCapabilities.Capabilities;
    capabilities->Removable = TRUE;
    capabilities->SurpriseRemovalOK = TRUE;
    capabilities->UniqueID = TRUE;
    return STATUS_SUCCESS;
}

// The device above has been told to let go.
void Go(Device& device) {
    Finished failed;
    {
        const Locked lock(theBus.lock);
        BeginLeaving(device, failed);
        device.stage = Stage::kGone;
    }
    device.input.Close();
    failed.CompleteAll(STATUS_DEVICE_NOT_CONNECTED);
}

// Programs do not find the device any more.
void Forget(Device& device) {
    Finished unplugged;
    {
        const Locked lock(theBus.lock);
        if (device.socket != nullptr) {
            unplugged.Add(Take(device.socket->unplug));
            device.socket->device = nullptr;
            device.socket = nullptr;
        }
        RemoveEntryList(&device);
        // Another one may have waited for its name.
        Reconsider();
    }
    unplugged.CompleteAll(STATUS_SUCCESS);
}

NTSTATUS Read(Device& device, IRP* irp) {
    const ULONG room = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.OutputBufferLength;
    const ULONG length = device.input.Take(irp->UserBuffer, room);
    return Complete(irp, length != 0 ? STATUS_SUCCESS : STATUS_DEVICE_NOT_CONNECTED, length);
}

NTSTATUS GetAttributes(const Device& device, IRP* irp, ULONG room) {
    auto* const attributes = static_cast<HID_DEVICE_ATTRIBUTES*>(irp->UserBuffer);
    if (room < sizeof(*attributes)) {
        return Complete(irp, STATUS_BUFFER_TOO_SMALL);
    }
    *attributes = {};
    attributes->Size = sizeof(*attributes);
    attributes->VendorID = device.vendor;
    attributes->ProductID = device.product;
    attributes->VersionNumber = device.version;
    return Complete(irp, STATUS_SUCCESS, sizeof(*attributes));
}

NTSTATUS GetDescriptor(const Device& device, IRP* irp, ULONG room) {
    auto* const descriptor = static_cast<HID_DESCRIPTOR*>(irp->UserBuffer);
    if (room < sizeof(*descriptor)) {
        return Complete(irp, STATUS_BUFFER_TOO_SMALL);
    }
    *descriptor = {};
    descriptor->bLength = sizeof(*descriptor);
    descriptor->bDescriptorType = HID_HID_DESCRIPTOR_TYPE;
    descriptor->bcdHID = 0x0111;
    descriptor->bNumDescriptors = 1;
    descriptor->DescriptorList[0].bReportType = HID_REPORT_DESCRIPTOR_TYPE;
    descriptor->DescriptorList[0].wReportLength = device.descriptorLength;
    return Complete(irp, STATUS_SUCCESS, sizeof(*descriptor));
}

NTSTATUS GetReportDescriptor(const Device& device, IRP* irp, ULONG room) {
    if (room < device.descriptorLength) {
        return Complete(irp, STATUS_BUFFER_TOO_SMALL);
    }
    RtlCopyMemory(irp->UserBuffer, device.descriptor, device.descriptorLength);
    return Complete(irp, STATUS_SUCCESS, device.descriptorLength);
}

}  // namespace

bool HaveOneName(const Device& a, const Device& b) {
    return a.vendor == b.vendor && a.product == b.product && a.collection == b.collection &&
           _wcsnicmp(a.instance, b.instance, kMaxInstance) == 0;
}

bool CanBeRemoved(const Device& device) {
    return device.stage == Stage::kEnumerated || device.stage == Stage::kReady;
}

void BeginLeaving(Device& device, Finished& failed) {
    device.leaving = true;
    failed.AddAll(&device.waiting);
    failed.AddAll(&device.fetched);
    if (device.socket != nullptr) {
        failed.Add(Take(device.socket->exchange));
        failed.Add(Take(device.socket->plug));
    }
    if (CanBeRemoved(device)) {
        Reconsider();
    }
}

NTSTATUS DevicePnp(Device& device, IRP* irp) {
    IO_STACK_LOCATION* const stack = IoGetCurrentIrpStackLocation(irp);
    NTSTATUS status = irp->IoStatus.Status;
    switch (stack->MinorFunction) {
        case IRP_MN_QUERY_ID:
            status = QueryId(device, irp, stack->Parameters.QueryId.IdType);
            break;
        case IRP_MN_QUERY_CAPABILITIES:
            status = QueryCapabilities(stack);
            break;
        case IRP_MN_START_DEVICE: {
            const Locked lock(theBus.lock);
            device.stage = Stage::kStarted;
            status = STATUS_SUCCESS;
            break;
        }
        case IRP_MN_QUERY_DEVICE_RELATIONS:
            if (stack->Parameters.QueryDeviceRelations.Type == BusRelations) {
                const Locked lock(theBus.lock);
                if (device.stage == Stage::kStarted) {
                    device.stage = Stage::kEnumerated;
                    Reconsider();
                }
            }
            break;
        case IRP_MN_SURPRISE_REMOVAL:
            Go(device);
            // Programs' requests that the class driver is looking at now still find what it is about to free.
            CatchUp();
            status = STATUS_SUCCESS;
            break;
        case IRP_MN_REMOVE_DEVICE: {
            Go(device);
            Forget(device);
            DEVICE_OBJECT* const object = device.object;
            Complete(irp, STATUS_SUCCESS);
            IoDeleteDevice(object);
            return STATUS_SUCCESS;
        }
        default:
            break;
    }
    return Complete(irp, status, irp->IoStatus.Information);
}

NTSTATUS DeviceRequest(Device& device, IRP* irp) {
    const IO_STACK_LOCATION* const stack = IoGetCurrentIrpStackLocation(irp);
    const ULONG room = stack->Parameters.DeviceIoControl.OutputBufferLength;
    switch (stack->Parameters.DeviceIoControl.IoControlCode) {
        case IOCTL_HID_GET_DEVICE_ATTRIBUTES:
            return GetAttributes(device, irp, room);
        case IOCTL_HID_GET_DEVICE_DESCRIPTOR:
            return GetDescriptor(device, irp, room);
        case IOCTL_HID_GET_REPORT_DESCRIPTOR:
            return GetReportDescriptor(device, irp, room);
        case IOCTL_HID_READ_REPORT:
            return Read(device, irp);
        case IOCTL_HID_SET_FEATURE:
            return BeginTransfer(device, irp, Kind::kSetFeature);
        case IOCTL_HID_GET_FEATURE:
            return BeginTransfer(device, irp, Kind::kGetFeature);
        case IOCTL_HID_SET_OUTPUT_REPORT:
        case IOCTL_HID_WRITE_REPORT:
            return BeginTransfer(device, irp, Kind::kSetOutput);
        default:
            return Complete(irp, STATUS_NOT_SUPPORTED);
    }
}

}  // namespace quarlin::sim::bus
