/* SPDX-License-Identifier: Apache-2.0 */
/* Sizes, offsets and numbers that callers have compiled in. Compiled as C and as C++ by every compiler; it never runs.
 */
#include <quarlin/quarlin.h>

#include <stddef.h>

#ifdef __cplusplus
#define SAME(actual, expected) static_assert((actual) == (expected), #actual " is not " #expected)
#else
#define SAME(actual, expected) _Static_assert((actual) == (expected), #actual " is not " #expected)
#endif

SAME(sizeof(QLerr), 4);
SAME(sizeof(FixMode), 4);
SAME(sizeof(FixSelection), 4);
SAME(sizeof(GpsProtType), 4);
SAME(sizeof(bool), 1);
SAME(sizeof(wchar_t), 2);

SAME(sizeof(GpsGlonassSatellite), 20);
SAME(offsetof(GpsGlonassSatellite, PRN), 0);
SAME(offsetof(GpsGlonassSatellite, Elevation), 4);
SAME(offsetof(GpsGlonassSatellite, Azimuth), 8);
SAME(offsetof(GpsGlonassSatellite, SNR), 12);
SAME(offsetof(GpsGlonassSatellite, used), 16);

SAME(sizeof(DeviceStatusEntry), 16);
SAME(offsetof(DeviceStatusEntry, size), 0);
SAME(offsetof(DeviceStatusEntry, device), 4);
SAME(offsetof(DeviceStatusEntry, powerState), 8);
SAME(offsetof(DeviceStatusEntry, biosState), 12);

SAME(sizeof(BatteryInfo), 96);
SAME(offsetof(BatteryInfo, BatteryName), 0);
SAME(sizeof(((BatteryInfo*)0)->BatteryName), 24);
SAME(offsetof(BatteryInfo, Chemistry), 24);
SAME(offsetof(BatteryInfo, PowerState), 28);
SAME(offsetof(BatteryInfo, RemainingCapacity), 32);
SAME(offsetof(BatteryInfo, FullChargedCapacity), 36);
SAME(offsetof(BatteryInfo, DesignedCapacity), 40);
SAME(offsetof(BatteryInfo, Voltage), 44);
SAME(offsetof(BatteryInfo, Rate), 48);
SAME(offsetof(BatteryInfo, TotalChargeIndex), 52);
SAME(offsetof(BatteryInfo, Temperature), 56);
SAME(offsetof(BatteryInfo, BatteryHealth), 60);
SAME(offsetof(BatteryInfo, BatteryID), 64);
SAME(offsetof(BatteryInfo, LastRecalibrationDate), 88);
SAME(offsetof(BatteryInfo, EnvironmentStatus), 92);

SAME(sizeof(QLBCR_DEVICE_INFO), 32);
SAME(offsetof(QLBCR_DEVICE_INFO, index), 0);
SAME(offsetof(QLBCR_DEVICE_INFO, iDeviceType), 4);
SAME(offsetof(QLBCR_DEVICE_INFO, deviceName), 8);
SAME(offsetof(QLBCR_DEVICE_INFO, linkKind), 16);
SAME(offsetof(QLBCR_DEVICE_INFO, linkFlag), 20);
SAME(offsetof(QLBCR_DEVICE_INFO, reserved), 24);

SAME(sizeof(QLBCR_BARCODE_DATA), 40);
SAME(offsetof(QLBCR_BARCODE_DATA, deviceIndex), 0);
SAME(offsetof(QLBCR_BARCODE_DATA, symbologyId), 8);
SAME(offsetof(QLBCR_BARCODE_DATA, symbologyIdLength), 16);
SAME(offsetof(QLBCR_BARCODE_DATA, data), 24);
SAME(offsetof(QLBCR_BARCODE_DATA, dataLength), 32);

SAME(sizeof(BarcodeSymbology), 4);
SAME(BARCODE_SYMBOLOGY_CODABAR, 0);
SAME(BARCODE_SYMBOLOGY_ISBT, 3);
SAME(BARCODE_SYMBOLOGY_EAN_128_IRREGULAR, 9);
SAME(BARCODE_SYMBOLOGY_EAN_ISSN, 12);
SAME(BARCODE_SYMBOLOGY_EAN_128, 14);
SAME(BARCODE_SYMBOLOGY_UPC_E1, 29);
SAME(BARCODE_SYMBOLOGY_QR, 37);
SAME(BARCODE_SYMBOLOGY_BPO_CODE, 39);
SAME(BARCODE_SYMBOLOGY_SWEDEN_POST, 46);
SAME(QLBCR_EDIT_NONE, 0);
SAME(QLBCR_EDIT_REPLACE, 1);
SAME(QLBCR_EDIT_INSERT, 2);
SAME(QLBCR_EDIT_DELETE, 3);

SAME(sizeof(MagStripeVendor), 4);
SAME(MAG_STRIPE_VENDOR_MAGTEK, 0);

SAME(sizeof(MagStripeReaderInfo), 912);
SAME(offsetof(MagStripeReaderInfo, index), 0);
SAME(offsetof(MagStripeReaderInfo, name), 4);
SAME(offsetof(MagStripeReaderInfo, serialNumber), 304);
SAME(offsetof(MagStripeReaderInfo, softwareId), 604);
SAME(offsetof(MagStripeReaderInfo, encryptionEnabled), 904);
SAME(offsetof(MagStripeReaderInfo, vendor), 908);

SAME(sizeof(MagStripeTrackData), 16);
SAME(offsetof(MagStripeTrackData, bufferSize), 0);
SAME(offsetof(MagStripeTrackData, length), 4);
SAME(offsetof(MagStripeTrackData, data), 8);

SAME(sizeof(MagStripeData), 56);
SAME(offsetof(MagStripeData, trackCount), 0);
SAME(offsetof(MagStripeData, tracks), 8);
SAME(offsetof(MagStripeData, maskedTrackCount), 16);
SAME(offsetof(MagStripeData, maskedTracks), 24);
SAME(offsetof(MagStripeData, rawLength), 32);
SAME(offsetof(MagStripeData, raw), 40);
SAME(offsetof(MagStripeData, isEncrypted), 48);
SAME(offsetof(MagStripeData, isValid), 49);

SAME(sizeof(MagTekExtras), 887);
SAME(offsetof(MagTekExtras, decodeStatus), 0);
SAME(offsetof(MagTekExtras, length), 3);
SAME(offsetof(MagTekExtras, cardEncodeType), 6);
SAME(offsetof(MagTekExtras, data), 7);
SAME(offsetof(MagTekExtras, reserved1), 343);
SAME(offsetof(MagTekExtras, magnePrintStatus), 344);
SAME(offsetof(MagTekExtras, magnePrintLength), 348);
SAME(offsetof(MagTekExtras, magnePrint), 349);
SAME(offsetof(MagTekExtras, deviceSerialNumber), 477);
SAME(offsetof(MagTekExtras, encryptionStatus), 493);
SAME(offsetof(MagTekExtras, keySerialNumber), 495);
SAME(offsetof(MagTekExtras, maskedLength), 505);
SAME(offsetof(MagTekExtras, maskedData), 508);
SAME(offsetof(MagTekExtras, encryptedSessionId), 844);
SAME(offsetof(MagTekExtras, absoluteLength), 852);
SAME(offsetof(MagTekExtras, encryptionCounter), 856);
SAME(offsetof(MagTekExtras, reserved2), 859);
SAME(offsetof(MagTekExtras, reserved3), 867);
SAME(offsetof(MagTekExtras, reserved4), 883);

#ifdef __cplusplus
SAME(QLerr(-1) < QLERR_OK, true);
#endif

SAME(QLERR_OK, 0);
SAME(QLERR_INVALID_ARGUMENT, 1);
SAME(QLERR_INVALID_STATE, 2);
SAME(QLERR_IO_ERROR, 3);
SAME(QLERR_OP_UNSUPPORTED, 4);
SAME(QLERR_INTERNAL_ERROR, 5);
SAME(QLERR_BUFFER_OVERFLOW, 6);
SAME(QLERR_UHFRFID_REQ_NOT_ALLOWED, 65537);
SAME(QLERR_UHFRFID_ACCESS, 65538);
SAME(QLERR_UHFRFID_KILL, 65539);
SAME(QLERR_UHFRFID_NOREPLY, 65540);
SAME(QLERR_UHFRFID_LOCK, 65541);
SAME(QLERR_UHFRFID_WRITE, 65542);
SAME(QLERR_UHFRFID_ERASE, 65543);
SAME(QLERR_UHFRFID_READ, 65544);
SAME(QLERR_UHFRFID_SELECT, 65545);
SAME(QLERR_UHFRFID_CHANNEL_TIMEOUT, 65546);
SAME(QLERR_UHFRFID_INVALID_PARAMETER2, 65551);
SAME(QLERR_UHFRFID_EASCODE, 65568);
SAME(QLERR_UHFRFID_OTHER, 65664);
SAME(QLERR_UHFRFID_MEMORY_OVERRUN, 65667);
SAME(QLERR_UHFRFID_MEMORY_LOCKED, 65668);
SAME(QLERR_UHFRFID_INSUFFICIENT_POWER, 65675);
SAME(QLERR_UHFRFID_NONSPECIFIC, 65679);
SAME(QLERR_UHFRFID_READONLY_ADDRESS, 65696);
SAME(QLERR_UHFRFID_PCIE_RADIO_DISABLED, 65712);
SAME(QLERR_UHFRFID_SECURITY_FAILURE, 65790);
SAME(QLERR_UHFRFID_HW_FAILURE, 65791);
SAME(QLERR_UHFRFID_INVALID_HANDLE, 65794);
SAME(QLERR_UHFRFID_NO_TAGS, 65796);
SAME(QLERR_UHFRFID_COMMAND_SEND, 65797);
SAME(QLERR_UHFRFID_COMMAND_RECEIVE, 65798);
SAME(QLERR_UHFRFID_BUFFERTOOSMALL, 65799);
SAME(QLERR_UHFRFID_BUFFERTOOBIG, 65800);
SAME(QLERR_UHFRFID_SYSTEM, 65802);
SAME(QLERR_UHFRFID_DEVICENOTFOUND, 65803);
SAME(QLERR_UHFRFID_UNCLASSIFIED, 65804);

SAME(FIX_MODE_UNKNOWN, 0);
SAME(FIX_MODE_NO_FIX, 1);
SAME(FIX_MODE_2D, 2);
SAME(FIX_MODE_3D, 3);
SAME(FIX_SELECTION_MANUAL, 0);
SAME(FIX_SELECTION_AUTOMATIC, 1);
SAME(GPS_PROTOCOL_NMEA, 1);
