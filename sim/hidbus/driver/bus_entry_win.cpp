// SPDX-License-Identifier: Apache-2.0
// The driver's entry, and the bus as plug and play sees it.
#include "hidbus/driver/bus_win.h"

namespace quarlin::sim::bus {

Bus theBus;

void Reconsider() {
    if (theBus.lower != nullptr) {
        IoInvalidateDeviceRelations(theBus.lower, BusRelations);
    }
}

namespace {

Extension& ExtensionOf(DEVICE_OBJECT* object) {
    return *static_cast<Extension*>(object->DeviceExtension);
}

Device* DeviceOf(LIST_ENTRY* entry) {
    return static_cast<Device*>(entry);
}

// A device waits until one that had the same name before has gone.
bool MustWait(Device& device) {
    for (LIST_ENTRY* e = theBus.devices.Flink; e != &device; e = e->Flink) {
        if (HaveOneName(*DeviceOf(e), device)) {
            return true;
        }
    }
    return false;
}

// Whether plug and play shall see the device.
bool IsListed(Device& device) {
    switch (device.stage) {
        case Stage::kWaiting:
            return !device.leaving && !MustWait(device);
        case Stage::kListed:
        case Stage::kStarted:
            return true;
        default:
            return !device.leaving && device.stage != Stage::kGone;
    }
}

bool SomeAreNew() {
    const Locked lock(theBus.lock);
    for (LIST_ENTRY* e = theBus.devices.Flink; e != &theBus.devices; e = e->Flink) {
        if (DeviceOf(e)->stage == Stage::kEnumerated) {
            return true;
        }
    }
    return false;
}

void SetIntroducing(bool introducing) {
    const Locked lock(theBus.lock);
    theBus.introducing = introducing;
}

// Before the class driver gives a report to programs it tells the window system, which has to know the device and asks
// all HID devices when it does not. That takes the dispatching thread, which must not wait for a report to pass then.
// So the window system is made to look for new devices here, by asking it for one that does not exist.
void IntroduceDevices() {
    SetIntroducing(true);
    CatchUp();
    ULONG size = 0;
    GetRawInputDeviceInfoW(reinterpret_cast<HANDLE>(~static_cast<ULONG_PTR>(1)), kRawInputDeviceInfo, nullptr, &size);
    SetIntroducing(false);
    CatchUp();
}

// Called again after each step, and only when what the last call caused has been done; this is how the driver learns
// that a device is ready, or that no driver was found for it.
NTSTATUS ListDevices(IRP* irp) {
    const bool introduced = SomeAreNew();
    if (introduced) {
        IntroduceDevices();
    }
    Finished ready;
    Finished failed;
    DEVICE_RELATIONS* relations = nullptr;
    {
        const Locked lock(theBus.lock);
        ULONG count = 0;
        for (LIST_ENTRY* e = theBus.devices.Flink; e != &theBus.devices; e = e->Flink) {
            ++count;
        }
        const SIZE_T size = sizeof(DEVICE_RELATIONS) + count * sizeof(DEVICE_OBJECT*);
        relations = static_cast<DEVICE_RELATIONS*>(ExAllocatePoolWithTag(PagedPool, size, kTag));
        if (relations == nullptr) {
            return STATUS_INSUFFICIENT_RESOURCES;
        }
        relations->Count = 0;
        for (LIST_ENTRY* e = theBus.devices.Flink; e != &theBus.devices; e = e->Flink) {
            Device& device = *DeviceOf(e);
            if (device.stage == Stage::kListed) {
                // Nothing started it.
                device.stage = Stage::kEnumerated;
                BeginLeaving(device, failed);
            } else if (device.stage == Stage::kEnumerated && introduced && device.socket != nullptr) {
                device.stage = Stage::kReady;
                ready.Add(Take(device.socket->plug));
            }
            if (!IsListed(device)) {
                continue;
            }
            if (device.stage == Stage::kWaiting) {
                device.stage = Stage::kListed;
                Reconsider();
            }
            ObReferenceObject(device.object);
            relations->Objects[relations->Count++] = device.object;
        }
    }
    ready.CompleteAll(STATUS_SUCCESS);
    failed.CompleteAll(STATUS_DEVICE_NOT_CONNECTED);
    irp->IoStatus.Information = reinterpret_cast<ULONG_PTR>(relations);
    return STATUS_SUCCESS;
}

NTSTATUS BusPnp(DEVICE_OBJECT* bus, IRP* irp) {
    IO_STACK_LOCATION* const stack = IoGetCurrentIrpStackLocation(irp);
    DEVICE_OBJECT* const lower = theBus.lower;
    switch (stack->MinorFunction) {
        case IRP_MN_QUERY_DEVICE_RELATIONS:
            if (stack->Parameters.QueryDeviceRelations.Type == BusRelations) {
                irp->IoStatus.Status = ListDevices(irp);
            }
            break;
        case IRP_MN_START_DEVICE:
        case IRP_MN_SURPRISE_REMOVAL:
            irp->IoStatus.Status = STATUS_SUCCESS;
            break;
        case IRP_MN_REMOVE_DEVICE: {
            {
                const Locked lock(theBus.lock);
                theBus.lower = nullptr;
            }
            irp->IoStatus.Status = STATUS_SUCCESS;
            IoSkipCurrentIrpStackLocation(irp);
            const NTSTATUS status = IoCallDriver(lower, irp);
            IoDetachDevice(lower);
            IoDeleteDevice(bus);
            return status;
        }
        default:
            break;
    }
    IoSkipCurrentIrpStackLocation(irp);
    return IoCallDriver(lower, irp);
}

NTSTATUS NTAPI DispatchPnp(DEVICE_OBJECT* object, IRP* irp) {
    switch (ExtensionOf(object).role) {
        case Role::kBus:
            return BusPnp(object, irp);
        case Role::kDevice:
            return DevicePnp(static_cast<Device&>(ExtensionOf(object)), irp);
        default:
            return Complete(irp, STATUS_INVALID_DEVICE_REQUEST);
    }
}

NTSTATUS NTAPI DispatchInternal(DEVICE_OBJECT* object, IRP* irp) {
    if (ExtensionOf(object).role != Role::kDevice) {
        return Complete(irp, STATUS_INVALID_DEVICE_REQUEST);
    }
    return DeviceRequest(static_cast<Device&>(ExtensionOf(object)), irp);
}

NTSTATUS NTAPI DispatchControl(DEVICE_OBJECT* object, IRP* irp) {
    if (ExtensionOf(object).role != Role::kControl) {
        return Complete(irp, STATUS_INVALID_DEVICE_REQUEST);
    }
    switch (IoGetCurrentIrpStackLocation(irp)->MajorFunction) {
        case IRP_MJ_CREATE:
            return ControlCreate(irp);
        case IRP_MJ_CLOSE:
            return ControlClose(irp);
        default:
            return ControlRequest(irp);
    }
}

NTSTATUS NTAPI AddDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* lower) {
    DEVICE_OBJECT* bus = nullptr;
    const NTSTATUS status =
        IoCreateDevice(driver, sizeof(Extension), nullptr, FILE_DEVICE_BUS_EXTENDER, 0, FALSE, &bus);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    ExtensionOf(bus).role = Role::kBus;
    {
        const Locked lock(theBus.lock);
        theBus.lower = lower;
    }
    IoAttachDeviceToDeviceStack(bus, lower);
    bus->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
    return STATUS_SUCCESS;
}

void NTAPI Unload(DRIVER_OBJECT* driver) {
    (void)driver;
    UNICODE_STRING link;
    RtlInitUnicodeString(&link, kLinkName);
    IoDeleteSymbolicLink(&link);
    IoDeleteDevice(theBus.control);
}

NTSTATUS CreateControl(DRIVER_OBJECT* driver) {
    UNICODE_STRING name;
    UNICODE_STRING link;
    RtlInitUnicodeString(&name, kDeviceName);
    RtlInitUnicodeString(&link, kLinkName);
    NTSTATUS status = IoCreateDevice(driver, sizeof(Extension), &name, FILE_DEVICE_UNKNOWN, 0, FALSE, &theBus.control);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    ExtensionOf(theBus.control).role = Role::kControl;
    status = IoCreateSymbolicLink(&link, &name);
    if (!NT_SUCCESS(status)) {
        IoDeleteDevice(theBus.control);
        return status;
    }
    theBus.control->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
    return STATUS_SUCCESS;
}

}  // namespace
}  // namespace quarlin::sim::bus

extern "C" NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
    using namespace quarlin::sim::bus;
    (void)registryPath;
    theBus.driver = driver;
    ExInitializeFastMutex(&theBus.lock);
    InitializeListHead(&theBus.sockets);
    InitializeListHead(&theBus.devices);
    InitializeListHead(&theBus.deferred);
    driver->MajorFunction[IRP_MJ_CREATE] = DispatchControl;
    driver->MajorFunction[IRP_MJ_CLOSE] = DispatchControl;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = DispatchControl;
    driver->MajorFunction[IRP_MJ_INTERNAL_DEVICE_CONTROL] = DispatchInternal;
    driver->MajorFunction[IRP_MJ_PNP] = DispatchPnp;
    driver->DriverExtension->AddDevice = AddDevice;
    driver->DriverUnload = Unload;
    return CreateControl(driver);
}
