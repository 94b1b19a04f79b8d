// SPDX-License-Identifier: Apache-2.0
#include "core/device.h"
#include "gps/gps_plan.h"
#include "hid/hid_plan.h"
#include "machine_libraries/light_plan.h"
#include "machine_libraries/probe_plan.h"
#include "magnesafe/reader_plan.h"
#include "scanner/computer_plan.h"
#include "scanner/emulator_plan.h"
#include "scanner/scanner_plan.h"
#include "uhf/uhf_plan.h"

namespace quarlin::sim {

const std::vector<DeviceKind>& DeviceKinds() {
    static const std::vector<DeviceKind> kinds = {
        {"gps", "a GPS and GLONASS receiver that writes NMEA sentences to a serial port", ReadGpsPlan},
        {"card-reader", "a MagneSafe reader of magnetic stripes on the HID bus", magnesafe::ReadReaderPlan},
        {"hid", "another device on the HID bus, one that nobody waits for", ReadHidPlan},
        {"rfid-reader", "a UHF RFID reader on the HID bus with tags in its field", ReadUhfPlan},
        {"probe", "the library that tells about built-in devices and batteries", ReadProbePlan},
        {"camera-light", "the camera light and its timer", ReadLightPlan},
        {"intermec-scanner", "an Intermec barcode engine and its library", scanner::ReadIntermecPlan},
        {"honeywell-scanner", "a Honeywell barcode engine and its library", scanner::ReadHoneywellPlan},
        {"emulator", "the program that has the Honeywell engine for itself", scanner::ReadEmulatorPlan},
        {"computer", "what the computer says it is", scanner::ReadComputerPlan},
    };
    return kinds;
}

}  // namespace quarlin::sim
