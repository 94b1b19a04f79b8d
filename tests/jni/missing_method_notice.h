// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace quarlin::test {

// How often the message box about the missing method for swipes was to be shown since the last question.
int TakeMissingMethodNotices();

}  // namespace quarlin::test
