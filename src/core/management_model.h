// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace quarlin {

// The machine's model as Windows management reports it, UTF-8, 249 bytes at most. Asked for until it has been told
// once, then remembered. Raises QuarlinException when a step fails, and then the calling thread keeps the lock: it may
// try again, while every other thread that asks waits for ever. Callers rely on both.
const char* ManagementModel();

}  // namespace quarlin
