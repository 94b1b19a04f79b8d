// SPDX-License-Identifier: Apache-2.0
// Assertions on calls of the DLL that this program is linked with. For a DLL loaded by name, see loaded_library_win.h.
#pragma once

#include "support/failure.h"

namespace quarlin::test {

inline Failure FetchLastError() {
    return FetchLastErrorBy(&QLAPI_GetLastError);
}

}  // namespace quarlin::test

// The call fails with this code and exactly this text, and the text can be fetched once.
#define EXPECT_FAILURE(call, code, text) \
    EXPECT_TRUE(::quarlin::test::FailedWith(&QLAPI_GetLastError, #call, (call), code, text))
#define ASSERT_FAILURE(call, code, text) \
    ASSERT_TRUE(::quarlin::test::FailedWith(&QLAPI_GetLastError, #call, (call), code, text))

// The call succeeds and leaves no record.
#define EXPECT_SUCCESS(call) EXPECT_TRUE(::quarlin::test::Succeeded(&QLAPI_GetLastError, #call, (call)))
#define ASSERT_SUCCESS(call) ASSERT_TRUE(::quarlin::test::Succeeded(&QLAPI_GetLastError, #call, (call)))
