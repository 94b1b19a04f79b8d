// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "native_method.h"

#include "com_norvane_quarlin_msr_MagStripeReader.h"

// A method of com.norvane.quarlin.msr.MagStripeReader by the name that it has in Java, without the prefix that all
// have.
#define QL_CARD_READER(method) Java_com_norvane_quarlin_msr_MagStripeReader_QLMSR_1##method

namespace quarlin::test {

inline constexpr const char* kCardReaderClass = "com/norvane/quarlin/msr/MagStripeReader";

template <typename Method, typename... Given>
Invoke CardReader(Method* method, Given... given) {
    return Calling(kCardReaderClass, method, given...);
}

}  // namespace quarlin::test
