// SPDX-License-Identifier: Apache-2.0
// Stands between the system's HID class driver, which takes over its dispatch table, and the bus, which does the work.
#include "hidbus/driver/kernel_win.h"

#include <hidusage.h>

// It has no provision for C++.
extern "C" {
#include <hidport.h>
}

namespace {

NTSTATUS NTAPI PassDown(DEVICE_OBJECT* object, IRP* irp) {
    IoSkipCurrentIrpStackLocation(irp);
    return IoCallDriver(static_cast<HID_DEVICE_EXTENSION*>(object->DeviceExtension)->NextDeviceObject, irp);
}

NTSTATUS NTAPI AddDevice(DRIVER_OBJECT* driver, DEVICE_OBJECT* object) {
    (void)driver;
    object->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
    return STATUS_SUCCESS;
}

void NTAPI Unload(DRIVER_OBJECT* driver) {
    (void)driver;
}

}  // namespace

extern "C" NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath) {
    driver->MajorFunction[IRP_MJ_INTERNAL_DEVICE_CONTROL] = PassDown;
    driver->MajorFunction[IRP_MJ_PNP] = PassDown;
    driver->DriverExtension->AddDevice = AddDevice;
    driver->DriverUnload = Unload;
    HID_MINIDRIVER_REGISTRATION registration = {};
    registration.Revision = 1;
    registration.DriverObject = driver;
    registration.RegistryPath = registryPath;
    registration.DeviceExtensionSize = 0;
    registration.DevicesArePolled = FALSE;
    return HidRegisterMinidriver(&registration);
}
