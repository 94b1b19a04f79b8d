// SPDX-License-Identifier: Apache-2.0
#include "missing_method_notice.h"

#include "jni/card_delivery.h"

#include <atomic>

namespace {

std::atomic<int> notices{0};

}  // namespace

void quarlin::jni::ShowMissingSwipeMethod() noexcept {
    ++notices;
}

int quarlin::test::TakeMissingMethodNotices() {
    return notices.exchange(0);
}
