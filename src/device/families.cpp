// SPDX-License-Identifier: Apache-2.0
#include "device/camera_family.h"
#include "device/device_family.h"

namespace quarlin::device {

// Both load their libraries as the system finds them.
constinit DeviceFamily deviceFamily(systemLibraries);
constinit CameraFamily cameraFamily(systemLibraries);

}  // namespace quarlin::device
