// SPDX-License-Identifier: Apache-2.0
// qlsdk.dll loaded by name, for tests of loading and unloading itself. They must not be linked with the import library,
// which would have it loaded before the test begins.
#pragma once

#include <quarlin/quarlin.h>

#include <windows.h>

#include "support/failure.h"
#include "support/owners_win.h"

// Exports under plain names.
#define QUARLIN_TEST_PLAIN_EXPORTS(X)      \
    X(QLAPI_GetLastError)                  \
    X(QLSTR_NarrowToWide)                  \
    X(QLSTR_WideToNarrow)                  \
    X(QLSTR_StrCopy)                       \
    X(QLSTR_StrCopyAnsi)                   \
    X(QLSTR_StrPrintf)                     \
    X(QLSTR_StrVarPrintf)                  \
    X(QLLIB_GetSDKVersion)                 \
    X(QLLIB_GetModelNumber)                \
    X(QLMISC_GetModelNumber)               \
    X(QLMISC_ShowConsole)                  \
    X(QLMISC_ThreadSleep)                  \
    X(QLMISC_WaitForDebugger)              \
    X(QLGPS_Initialize)                    \
    X(QLGPS_Uninitialize)                  \
    X(QLGPS_Enable)                        \
    X(QLGPS_Disable)                       \
    X(QLGPS_IsEnabled)                     \
    X(QLGPS_GetBearing)                    \
    X(QLGPS_GetCoordinates)                \
    X(QLGPS_GetFixQuality)                 \
    X(QLGPS_GetFixStatus)                  \
    X(QLGPS_GetHDOP)                       \
    X(QLGPS_GetMaxSat)                     \
    X(QLGPS_GetPDOP)                       \
    X(QLGPS_GetSatellites)                 \
    X(QLGPS_GetSatellitesUsedForFix)       \
    X(QLGPS_GetSpeed)                      \
    X(QLGPS_GetTimeStamp)                  \
    X(QLGPS_GetVDOP)                       \
    X(QLMSR_Initialize)                    \
    X(QLMSR_Uninitialize)                  \
    X(QLMSR_GetMagStripeDevices)           \
    X(QLMSR_GetMagStripeDevices_DotNET)    \
    X(QLMSR_SelectDevice)                  \
    X(QLMSR_Enable)                        \
    X(QLMSR_Disable)                       \
    X(QLMSR_IsEnabled)                     \
    X(QLMSR_AddCallback)                   \
    X(QLMSR_RemoveCallback)                \
    X(QLMSR_ClearCallbacks)                \
    X(QLMSR_GetMagTekExtras)               \
    X(QLBCR_GetBarcodeDevices)             \
    X(QLBCR_SelectDevice)                  \
    X(QLBCR_SetAllowExternalBarcodeDevice) \
    X(QLBCR_Initialize)                    \
    X(QLBCR_Uninitialize)                  \
    X(QLBCR_Enable)                        \
    X(QLBCR_Disable)                       \
    X(QLBCR_IsEnabled)                     \
    X(QLBCR_GetDeviceType)                 \
    X(QLBCR_GetDeviceName)                 \
    X(QLBCR_GetDeviceFirmwareVersion)      \
    X(QLBCR_SetCallback)                   \
    X(QLBCR_StartScanning)                 \
    X(QLBCR_StopScanning)                  \
    X(QLBCR_EnableSymbology)               \
    X(QLBCR_EnableSymbologies)             \
    X(QLBCR_SetTriggerMode)                \
    X(QLBCR_SetHardwareTriggerEnabled)     \
    X(QLBCR_IsHardwareTriggerEnabled)      \
    X(QLBCR_SetSoundEnabled)               \
    X(QLBCR_IsSoundEnabled)                \
    X(QLBCR_SetReadSuccessSoundFile)       \
    X(QLBCR_SetPrefixData)                 \
    X(QLBCR_SetSuffixData)                 \
    X(QLBCR_GetPrefixData)                 \
    X(QLBCR_GetSuffixData)                 \
    X(QLBCR_SetDataEditingMode)            \
    X(QLBCR_GetDataEditingMode)            \
    X(QLBCR_dotNet_GetNoOfDevices)         \
    X(QLBCR_dotNet_GetBarcodeDevices)      \
    X(QLDEVICE_Initialize)                 \
    X(QLDEVICE_Uninitialize)               \
    X(QLDEVICE_GetDeviceAvailable)         \
    X(QLDEVICE_GetDevicePoweredOn)         \
    X(QLDEVICE_GetDeviceEnabledInBios)     \
    X(QLDEVICE_GetDevices)                 \
    X(QLDEVICE_GetBatteryInfo)             \
    X(QLCAM_Initialize)                    \
    X(QLCAM_Uninitialize)                  \
    X(QLCAM_SetCameraLightOn)              \
    X(QLCAM_SetCameraLightOff)             \
    X(QLCAM_TurnCameraLightOnForTime)      \
    X(QLCAM_IsCameraLightOn)               \
    X(QLCAM_GetCameraLightTime)            \
    X(QLUHFRFID_OpenReader)                \
    X(QLUHFRFID_CloseReader)               \
    X(QLUHFRFID_GetFirstTag)               \
    X(QLUHFRFID_GetNextTag)                \
    X(QLUHFRFID_SelectTag)                 \
    X(QLUHFRFID_ReadTag)                   \
    X(QLUHFRFID_WriteTag)                  \
    X(QLUHFRFID_LockTag)                   \
    X(QLUHFRFID_KillTag)                   \
    X(QLUHFRFID_SetPower)                  \
    X(QLUHFRFID_GetPower)                  \
    X(QLUHFRFID_SetLinkFreqForQuery)       \
    X(QLUHFRFID_SetMillerForQuery)         \
    X(QLUHFRFID_SetSessionForQuery)        \
    X(QLUHFRFID_SetQBeginForQuery)         \
    X(QLUHFRFID_SetSensitivityForQuery)    \
    X(QLUHFRFID_GetLinkFreqForQuery)       \
    X(QLUHFRFID_GetMillerForQuery)         \
    X(QLUHFRFID_GetSessionForQuery)        \
    X(QLUHFRFID_GetQBeginForQuery)         \
    X(QLUHFRFID_GetSensitivityForQuery)

// Exports under names that encode the signature, once as GCC and once as Microsoft's compiler does.
#define QUARLIN_TEST_DECORATED_EXPORTS(X)                                                                    \
    X(GPS_VerifyAvailable, "_Z19GPS_VerifyAvailablev", "?GPS_VerifyAvailable@@YA?AW4QLerr@@XZ")              \
    X(QLGPS_GetDeviceFirmwareVersion, "_Z30QLGPS_GetDeviceFirmwareVersionPci",                               \
      "?QLGPS_GetDeviceFirmwareVersion@@YA?AW4QLerr@@PEADH@Z")                                               \
    X(QLGPS_GetDeviceName, "_Z19QLGPS_GetDeviceNamePci", "?QLGPS_GetDeviceName@@YA?AW4QLerr@@PEADH@Z")       \
    X(QLGPS_GetFixMode, "_Z16QLGPS_GetFixModeP7FixMode", "?QLGPS_GetFixMode@@YA?AW4QLerr@@PEAW4FixMode@@@Z") \
    X(QLGPS_GetFixSelection, "_Z21QLGPS_GetFixSelectionP12FixSelection",                                     \
      "?QLGPS_GetFixSelection@@YA?AW4QLerr@@PEAW4FixSelection@@@Z")                                          \
    X(QLGPS_GetGpsDevices, "_Z19QLGPS_GetGpsDevicesPi", "?QLGPS_GetGpsDevices@@YA?AW4QLerr@@PEAH@Z")         \
    X(QLGPS_GetProtocol, "_Z17QLGPS_GetProtocolP11GpsProtType", "?QLGPS_GetProtocol@@YA?AW4QLerr@@PEAW4GpsProtType@@@Z")

namespace quarlin::test {

// The library and the typed addresses of its functions (the decorated ones by their GCC names). Calls look as they do
// in a linked program: library.QLGPS_Initialize(3).
class LoadedLibrary {
  public:
    // Throws std::runtime_error when the library or one of its functions is missing.
    LoadedLibrary();

    HMODULE Module() const { return module_.Get(); }
    // Unloads the library; its functions must not be called any more.
    void Unload();

    Failure FetchLastError() const { return FetchLastErrorBy(QLAPI_GetLastError); }

#define QUARLIN_TEST_PLAIN_MEMBER(name) decltype(&::name) name = nullptr;
#define QUARLIN_TEST_DECORATED_MEMBER(name, gnuName, msvcName) decltype(&::name) name = nullptr;
    QUARLIN_TEST_PLAIN_EXPORTS(QUARLIN_TEST_PLAIN_MEMBER)
    QUARLIN_TEST_DECORATED_EXPORTS(QUARLIN_TEST_DECORATED_MEMBER)
#undef QUARLIN_TEST_PLAIN_MEMBER
#undef QUARLIN_TEST_DECORATED_MEMBER

  private:
    UniqueModule module_;
};

// Loads the library and gives the system's error (0 for none); for loads that are expected to fail. A library that
// loads is unloaded again.
DWORD TryToLoad();

}  // namespace quarlin::test

#define EXPECT_FAILURE_IN(library, call, code, text) \
    EXPECT_TRUE(::quarlin::test::FailedWith((library).QLAPI_GetLastError, #call, (library).call, code, text))
#define EXPECT_SUCCESS_IN(library, call) \
    EXPECT_TRUE(::quarlin::test::Succeeded((library).QLAPI_GetLastError, #call, (library).call))
