// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/card_swipe.h"

#include <optional>

namespace quarlin::qlctl {

// The card readers from initialised to uninitialised. Failing calls throw a Failure. One at a time: the library knows
// one list of readers.
class CardSession {
  public:
    CardSession();
    ~CardSession();
    CardSession(const CardSession&) = delete;
    CardSession& operator=(const CardSession&) = delete;

    std::vector<CardReader> FindReaders();
    // From now on the swipes of this reader come.
    void Enable(int index);
    // False when it was unplugged.
    bool IsEnabled(int index);
    // The oldest swipe that was not taken yet.
    std::optional<CardSwipe> TakeSwipe();
};

}  // namespace quarlin::qlctl
