// SPDX-License-Identifier: Apache-2.0
#include "msr/magnesafe_factory_win.h"

#include "msr/magnesafe_reader_win.h"
#include "msr/reader_path.h"

#include <utility>

namespace quarlin::msr {

bool CMSRDevFactoryMagtekSfV5::CreateDevices(MSRDevs& readers) {
    readers.clear();
    CUsbHidDev hid;
    if (!hid.UpdateDeviceList()) {
        return false;
    }
    std::vector<std::wstring> paths;
    hid.EnumerateDevicePaths(paths);
    for (std::wstring& path : paths) {
        if (IsMagneSafePath(path)) {
            readers.push_back(std::make_shared<CMSRDevMagtekMagneSafeV5>(std::move(path)));
        }
    }
    return true;
}

}  // namespace quarlin::msr
