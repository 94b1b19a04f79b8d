// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "native_method.h"

#include "com_norvane_quarlin_bcr_QlBarcode.h"

// A method of com.norvane.quarlin.bcr.QlBarcode by the name that it has in Java, without the prefix that all have.
#define QL_BARCODE(method) Java_com_norvane_quarlin_bcr_QlBarcode_nQLBCR_1##method

namespace quarlin::test {

template <typename Method, typename... Given>
Invoke Barcode(Method* method, Given... given) {
    return Calling("com/norvane/quarlin/bcr/QlBarcode", method, given...);
}

}  // namespace quarlin::test
