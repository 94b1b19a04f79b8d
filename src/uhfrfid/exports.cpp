// SPDX-License-Identifier: Apache-2.0
#include "uhfrfid/reader_frame.h"

#include <quarlin/uhf_rfid.h>

using namespace quarlin;
using namespace quarlin::uhfrfid;

QLerr QLUHFRFID_OpenReader(void** handle) {
    return ExportUnder(uhfFamily.MakeLock(), CodeName, [&] { uhfFamily.Open(handle); });
}

QLerr QLUHFRFID_CloseReader(void* handle) {
    return ExportUnder(uhfFamily.Lock(), CodeName, [&] { uhfFamily.Close(handle); });
}

QLerr QLUHFRFID_GetFirstTag(void* handle, char* tagId, int* length, int* signal) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) {
        reader.FindTag(TagReader::Inventory::kFirst, tagId, length, signal);
    });
}

QLerr QLUHFRFID_GetNextTag(void* handle, char* tagId, int* length, int* signal) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) {
        reader.FindTag(TagReader::Inventory::kNext, tagId, length, signal);
    });
}

QLerr QLUHFRFID_SelectTag(void* handle, unsigned char* tagId, unsigned int length) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) { reader.Select(tagId, length); });
}

QLerr QLUHFRFID_ReadTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                        int passwordLength, void* data, int wordCount) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) {
        reader.ReadMemory(bank, wordPointer, password, passwordLength, data, wordCount);
    });
}

QLerr QLUHFRFID_WriteTag(void* handle, unsigned int bank, unsigned int wordPointer, unsigned char* password,
                         int passwordLength, unsigned char* data, int wordCount) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) {
        reader.WriteMemory(bank, wordPointer, password, passwordLength, data, wordCount);
    });
}

QLerr QLUHFRFID_LockTag(void* handle, unsigned int lockParameter1, unsigned int lockParameter2, unsigned char* password,
                        int passwordLength) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) {
        reader.Lock(lockParameter1, lockParameter2, password, passwordLength);
    });
}

QLerr QLUHFRFID_KillTag(void* handle, unsigned char* password, int passwordLength) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) { reader.Kill(password, passwordLength); });
}

QLerr QLUHFRFID_SetPower(void* handle, unsigned int power) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) { reader.SetPower(power); });
}

QLerr QLUHFRFID_GetPower(void* handle, unsigned int* power) {
    return ExportForReader(handle, CodeName, [&](TagReader& reader) { reader.GetPower(power); });
}

QLerr QLUHFRFID_SetLinkFreqForQuery(void* handle, unsigned int* kHz) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.SetQuery(kLinkFrequency, kHz); });
}

QLerr QLUHFRFID_SetMillerForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.SetQuery(kMiller, value); });
}

QLerr QLUHFRFID_SetSessionForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.SetQuery(kSession, value); });
}

QLerr QLUHFRFID_SetQBeginForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.SetQuery(kQBegin, value); });
}

QLerr QLUHFRFID_SetSensitivityForQuery(void* handle, int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.SetQuery(kSensitivity, value); });
}

QLerr QLUHFRFID_GetLinkFreqForQuery(void* handle, unsigned int* kHz) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.GetQuery(kLinkFrequency, kHz); });
}

QLerr QLUHFRFID_GetMillerForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.GetQuery(kMiller, value); });
}

QLerr QLUHFRFID_GetSessionForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.GetQuery(kSession, value); });
}

QLerr QLUHFRFID_GetQBeginForQuery(void* handle, unsigned int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.GetQuery(kQBegin, value); });
}

QLerr QLUHFRFID_GetSensitivityForQuery(void* handle, int* value) {
    return ExportForReader(handle, ReaderMessage, [&](TagReader& reader) { reader.GetQuery(kSensitivity, value); });
}
