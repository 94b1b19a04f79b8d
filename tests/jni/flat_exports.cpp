// SPDX-License-Identifier: Apache-2.0
// The families' exports: each tells Call what its parameters are.
#include "flat_library_call.h"

using namespace quarlin::test;

namespace {

constexpr std::size_t kBarcodeText = QLBCR_TEXT_SIZE;
constexpr std::size_t kTimeStamp = 80;

// What a function that registers a callback does with it.
template <typename Callback>
QLerr Registered(QLerr result, Callback callback) {
    if (FlatLibrary* const flat = FlatLibrary::Current(); flat != nullptr && result == QLERR_OK) {
        flat->Keep(callback);
    }
    return result;
}

}  // namespace

extern "C" {

// --- barcode ---

QLerr QLBCR_Initialize(void) {
    return Call(__func__);
}
QLerr QLBCR_Uninitialize(void) {
    return Call(__func__);
}
QLerr QLBCR_Enable(void) {
    return Call(__func__);
}
QLerr QLBCR_Disable(void) {
    return Call(__func__);
}
QLerr QLBCR_StartScanning(void) {
    return Call(__func__);
}
QLerr QLBCR_StopScanning(void) {
    return Call(__func__);
}
QLerr QLBCR_SelectDevice(int index) {
    return Call(__func__, index);
}
QLerr QLBCR_SetAllowExternalBarcodeDevice(unsigned int allow) {
    return Call(__func__, allow);
}
QLerr QLBCR_SetTriggerMode(unsigned int mode) {
    return Call(__func__, mode);
}
QLerr QLBCR_SetHardwareTriggerEnabled(unsigned int enable) {
    return Call(__func__, enable);
}
QLerr QLBCR_SetSoundEnabled(unsigned int enable) {
    return Call(__func__, enable);
}
QLerr QLBCR_EnableSymbology(unsigned char enable, const wchar_t* name) {
    return Call(__func__, enable, name);
}
QLerr QLBCR_EnableSymbologies(unsigned char enable, unsigned int symbology) {
    return Call(__func__, enable, symbology);
}
QLerr QLBCR_SetReadSuccessSoundFile(const wchar_t* path) {
    return Call(__func__, path);
}
QLerr QLBCR_SetCallback(QLBCR_Callback callback) {
    return Registered(Call(__func__, callback), callback);
}
QLerr QLBCR_IsEnabled(unsigned int* enabled) {
    return Call(__func__, Out{enabled});
}
QLerr QLBCR_IsHardwareTriggerEnabled(unsigned char* enabled) {
    return Call(__func__, Out{enabled});
}
QLerr QLBCR_IsSoundEnabled(unsigned char* enabled) {
    return Call(__func__, Out{enabled});
}
QLerr QLBCR_GetDeviceType(unsigned int* type) {
    return Call(__func__, Out{type});
}
QLerr QLBCR_dotNet_GetNoOfDevices(int* count) {
    return Call(__func__, Out{count});
}
QLerr QLBCR_GetDeviceName(char* buffer, unsigned int* size) {
    return Call(__func__, TextOut{buffer, RoomOf(size)}, InOut{size});
}
QLerr QLBCR_GetDeviceFirmwareVersion(char* buffer, unsigned int* size) {
    return Call(__func__, TextOut{buffer, RoomOf(size)}, InOut{size});
}
QLerr QLBCR_SetPrefixData(unsigned int asTop, const char* text) {
    return Call(__func__, asTop, text);
}
QLerr QLBCR_SetSuffixData(unsigned int asTop, const char* text) {
    return Call(__func__, asTop, text);
}
QLerr QLBCR_GetPrefixData(unsigned int* asTop, char* text) {
    return Call(__func__, Out{asTop}, TextOut{text, kBarcodeText});
}
QLerr QLBCR_GetSuffixData(unsigned int* asTop, char* text) {
    return Call(__func__, Out{asTop}, TextOut{text, kBarcodeText});
}
QLerr QLBCR_SetDataEditingMode(unsigned int iEditMode, const char* strTarget, const char* strCont, int iStart,
                               int iEnd) {
    return Call(__func__, iEditMode, strTarget, strCont, iStart, iEnd);
}
QLerr QLBCR_GetDataEditingMode(unsigned int* iEditMode, char* strTarget, char* strCont, int* iStart, int* iEnd) {
    return Call(__func__, Out{iEditMode}, TextOut{strTarget, kBarcodeText}, TextOut{strCont, kBarcodeText}, Out{iStart},
                Out{iEnd});
}
QLerr QLBCR_GetBarcodeDevices(QLBCR_DEVICE_INFO* devices, int* count) {
    return Call(__func__, RecordsOut{devices}, InOut{count});
}

// --- card reader ---

QLerr QLMSR_Initialize(void) {
    return Call(__func__);
}
QLerr QLMSR_Uninitialize(void) {
    return Call(__func__);
}
QLerr QLMSR_Enable(void) {
    return Call(__func__);
}
QLerr QLMSR_Disable(void) {
    return Call(__func__);
}
QLerr QLMSR_ClearCallbacks(void) {
    return Call(__func__);
}
QLerr QLMSR_SelectDevice(int index) {
    return Call(__func__, index);
}
QLerr QLMSR_IsEnabled(bool* enabled) {
    return Call(__func__, Out{enabled});
}
QLerr QLMSR_AddCallback(QLMSR_Callback callback, unsigned int* id) {
    return Registered(Call(__func__, callback, Out{id}), callback);
}
QLerr QLMSR_RemoveCallback(unsigned int id) {
    return Call(__func__, id);
}
QLerr QLMSR_GetMagStripeDevices(MagStripeReaderInfo* readers, int* count) {
    return Call(__func__, RecordsOut{readers}, InOut{count});
}
QLerr QLMSR_GetMagTekExtras(const MagStripeData* record, MagTekExtras* extras) {
    return Call(__func__, record, RecordsOut{extras});
}

// --- GPS ---

QLerr QLGPS_Initialize(int portNumber) {
    return Call(__func__, portNumber);
}
QLerr QLGPS_Uninitialize(void) {
    return Call(__func__);
}
QLerr QLGPS_Enable(void) {
    return Call(__func__);
}
QLerr QLGPS_Disable(void) {
    return Call(__func__);
}
QLerr QLGPS_IsEnabled(bool* enabled) {
    return Call(__func__, Out{enabled});
}
QLerr QLGPS_GetBearing(double* bearing) {
    return Call(__func__, Out{bearing});
}
QLerr QLGPS_GetCoordinates(double* latitude, double* longitude, double* altitude) {
    return Call(__func__, Out{latitude}, Out{longitude}, Out{altitude});
}
QLerr QLGPS_GetFixQuality(int* quality) {
    return Call(__func__, Out{quality});
}
QLerr QLGPS_GetFixStatus(int* status) {
    return Call(__func__, Out{status});
}
QLerr QLGPS_GetHDOP(double* hdop) {
    return Call(__func__, Out{hdop});
}
QLerr QLGPS_GetMaxSat(int* count) {
    return Call(__func__, Out{count});
}
QLerr QLGPS_GetPDOP(double* pdop) {
    return Call(__func__, Out{pdop});
}
QLerr QLGPS_GetSatellites(GpsGlonassSatellite* records, int capacity) {
    return Call(__func__, RecordsOut{records}, capacity);
}
QLerr QLGPS_GetSatellitesUsedForFix(int* count) {
    return Call(__func__, Out{count});
}
QLerr QLGPS_GetSpeed(double* speed) {
    return Call(__func__, Out{speed});
}
QLerr QLGPS_GetTimeStamp(char* text) {
    return Call(__func__, TextOut{text, kTimeStamp});
}
QLerr QLGPS_GetVDOP(double* vdop) {
    return Call(__func__, Out{vdop});
}

// --- UHF RFID ---

QLerr QLUHFRFID_OpenReader(void** handle) {
    return Call(__func__, Out{handle});
}
QLerr QLUHFRFID_CloseReader(void* handle) {
    return Call(__func__, HandleIn{handle});
}
QLerr QLUHFRFID_GetFirstTag(void* handle, char* tagId, int* length, int* signal) {
    return Call(__func__, HandleIn{handle}, BytesOut{tagId, RoomOf(length)}, InOut{length}, Out{signal});
}
QLerr QLUHFRFID_GetNextTag(void* handle, char* tagId, int* length, int* signal) {
    return Call(__func__, HandleIn{handle}, BytesOut{tagId, RoomOf(length)}, InOut{length}, Out{signal});
}
QLerr QLUHFRFID_SelectTag(void* handle, unsigned char* tagId, unsigned int length) {
    // What Java counts below zero comes as a large number, which no buffer has.
    const int count = static_cast<int>(length);
    return Call(__func__, HandleIn{handle}, BytesIn{tagId, RoomOf(&count)}, length);
}
QLerr QLUHFRFID_ReadTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                        int passwordLength, void* data, int wordCount) {
    return Call(__func__, HandleIn{handle}, bank, wordPointer, BytesIn{password, RoomOf(&passwordLength)},
                passwordLength, BytesOut{data, 2 * RoomOf(&wordCount)}, wordCount);
}
QLerr QLUHFRFID_WriteTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                         int passwordLength, unsigned char* data, int wordCount) {
    return Call(__func__, HandleIn{handle}, bank, wordPointer, BytesIn{password, RoomOf(&passwordLength)},
                passwordLength, BytesIn{data, 2 * RoomOf(&wordCount)}, wordCount);
}
QLerr QLUHFRFID_LockTag(void* handle, unsigned int lockParameter1, unsigned int lockParameter2, unsigned char* password,
                        int passwordLength) {
    return Call(__func__, HandleIn{handle}, lockParameter1, lockParameter2, BytesIn{password, RoomOf(&passwordLength)},
                passwordLength);
}
QLerr QLUHFRFID_KillTag(void* handle, unsigned char* password, int passwordLength) {
    return Call(__func__, HandleIn{handle}, BytesIn{password, RoomOf(&passwordLength)}, passwordLength);
}
QLerr QLUHFRFID_SetPower(void* handle, unsigned int power) {
    return Call(__func__, HandleIn{handle}, power);
}
QLerr QLUHFRFID_GetPower(void* handle, unsigned int* power) {
    return Call(__func__, HandleIn{handle}, Out{power});
}
QLerr QLUHFRFID_SetLinkFreqForQuery(void* handle, unsigned int* kHz) {
    return Call(__func__, HandleIn{handle}, InOut{kHz});
}
QLerr QLUHFRFID_SetMillerForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, InOut{value});
}
QLerr QLUHFRFID_SetSessionForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, InOut{value});
}
QLerr QLUHFRFID_SetQBeginForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, InOut{value});
}
QLerr QLUHFRFID_SetSensitivityForQuery(void* handle, int* value) {
    return Call(__func__, HandleIn{handle}, InOut{value});
}
QLerr QLUHFRFID_GetLinkFreqForQuery(void* handle, unsigned int* kHz) {
    return Call(__func__, HandleIn{handle}, Out{kHz});
}
QLerr QLUHFRFID_GetMillerForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, Out{value});
}
QLerr QLUHFRFID_GetSessionForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, Out{value});
}
QLerr QLUHFRFID_GetQBeginForQuery(void* handle, unsigned int* value) {
    return Call(__func__, HandleIn{handle}, Out{value});
}
QLerr QLUHFRFID_GetSensitivityForQuery(void* handle, int* value) {
    return Call(__func__, HandleIn{handle}, Out{value});
}

// --- devices, camera light ---

QLerr QLDEVICE_Initialize(void) {
    return Call(__func__);
}
QLerr QLDEVICE_Uninitialize(void) {
    return Call(__func__);
}
QLerr QLDEVICE_GetDeviceAvailable(int device, bool* available) {
    return Call(__func__, device, Out{available});
}
QLerr QLDEVICE_GetDevicePoweredOn(int device, bool* poweredOn) {
    return Call(__func__, device, Out{poweredOn});
}
QLerr QLDEVICE_GetDeviceEnabledInBios(int device, bool* enabled) {
    return Call(__func__, device, Out{enabled});
}
QLerr QLDEVICE_GetBatteryInfo(int battery, BatteryInfo* info) {
    return Call(__func__, battery, RecordsOut{info});
}

QLerr QLCAM_Initialize(void) {
    return Call(__func__);
}
QLerr QLCAM_Uninitialize(void) {
    return Call(__func__);
}
QLerr QLCAM_SetCameraLightOn(void) {
    return Call(__func__);
}
QLerr QLCAM_SetCameraLightOff(void) {
    return Call(__func__);
}
QLerr QLCAM_TurnCameraLightOnForTime(int seconds) {
    return Call(__func__, seconds);
}
QLerr QLCAM_IsCameraLightOn(bool* on) {
    return Call(__func__, Out{on});
}
QLerr QLCAM_GetCameraLightTime(uint8_t* time) {
    return Call(__func__, Out{time});
}

// --- library ---

QLerr QLLIB_GetSDKVersion(wchar_t* buffer, int* size) {
    return Call(__func__, TextOut{buffer, RoomOf(size)}, InOut{size});
}
QLerr QLLIB_GetModelNumber(wchar_t* buffer, int* size) {
    return Call(__func__, TextOut{buffer, RoomOf(size)}, InOut{size});
}
}
