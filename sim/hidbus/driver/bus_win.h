// SPDX-License-Identifier: Apache-2.0
// The bus driver: one socket for each open handle of the control device, one device for each thing plugged in.
//
// Requests of programs, of sockets and of closing handles come one at a time, on the dispatching thread; plug and play
// has a thread of its own, and each device has the class driver's reading thread.
#pragma once

#include "hidbus/bus_protocol.h"
#include "hidbus/driver/kernel_win.h"
#include "hidbus/driver/pipe_win.h"
#include "hidbus/report_layout.h"

namespace quarlin::sim::bus {

enum class Role : ULONG {
    kControl,
    kBus,
    kDevice
};

// The beginning of every device extension of this driver.
struct Extension {
    Role role;
};

struct Device;

struct Socket : LIST_ENTRY {
    // Tells made-up instances apart.
    ULONG number;
    Device* device;
    // Requests that wait; at most one of each.
    IRP* plug;
    IRP* unplug;
    IRP* exchange;
};

// How far plug and play has come with a device. A device must not be taken from the bus before kEnumerated: the class
// driver's device on top of it would be forgotten while its reading thread runs. A device gives input from kReady on.
enum class Stage : ULONG {
    kWaiting,
    kListed,
    kStarted,
    kEnumerated,
    kReady,
    kGone
};

struct Device : Extension, LIST_ENTRY {
    DEVICE_OBJECT* object;
    // Null when its handle has been closed.
    Socket* socket;
    Stage stage;
    // Unplugged: takes no more requests, and is to be taken from the bus.
    bool leaving;

    USHORT vendor;
    USHORT product;
    USHORT version;
    USHORT collection;
    WCHAR instance[kMaxInstance + 1];
    ReportLayout layout;
    USHORT descriptorLength;
    UCHAR descriptor[kMaxDescriptor];

    // Transfers of programs: not yet fetched by the socket, and fetched but not answered.
    LIST_ENTRY waiting;
    LIST_ENTRY fetched;
    Pipe input;
};

struct Bus {
    DRIVER_OBJECT* driver;
    // The device below ours, whose children the devices are. Null while the bus is not there.
    DEVICE_OBJECT* lower;
    DEVICE_OBJECT* control;
    HANDLE dispatcher;
    ULONGLONG lastRequest;
    FAST_MUTEX lock;
    LIST_ENTRY sockets;
    LIST_ENTRY devices;
    // While it is true no input passes, and what came with input waits.
    bool introducing;
    LIST_ENTRY deferred;
    // The one of them that is looked at now.
    IRP* resumed;
};

extern Bus theBus;

// With the lock held: plug and play shall look at the bus again.
void Reconsider();

// ---- bus_device_win.cpp ----

// With the lock held: whether plug and play may take the device from the bus.
bool CanBeRemoved(const Device& device);
// Whether the two would have the same path.
bool HaveOneName(const Device& a, const Device& b);
// With the lock held. What it takes out fails with "not connected".
void BeginLeaving(Device& device, Finished& failed);
// Both are to be called for requests to a device, and complete them or keep them.
NTSTATUS DevicePnp(Device& device, IRP* irp);
NTSTATUS DeviceRequest(Device& device, IRP* irp);

// ---- bus_transfer_win.cpp ----

NTSTATUS BeginTransfer(Device& device, IRP* irp, Kind kind);
// The exchange of a socket: ends the transfer that was answered, and fetches the next.
NTSTATUS Exchange(Socket& socket, IRP* irp);
NTSTATUS SendInput(Socket& socket, IRP* irp);
// The next of the requests that brought input while none passed; null when there is none, or still no input passes.
IRP* TakeDeferred();

// ---- bus_socket_win.cpp ----

NTSTATUS ControlCreate(IRP* irp);
NTSTATUS ControlClose(IRP* irp);
NTSTATUS ControlRequest(IRP* irp);
// On any thread but the dispatching one: waits until that has looked at everything that was asked before, also at what
// had been deferred.
void CatchUp();

}  // namespace quarlin::sim::bus
