// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "machine_libraries/machine_record.h"

namespace quarlin::sim {

// The records of this machine.
MachineRecordMakers MachineRecords();

}  // namespace quarlin::sim
