// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/card_swipe.h"

namespace quarlin::qlctl {

// One object in one line each, line end included. The field names are part of qlctl's interface (README.md).
std::string CardReadersJson(const std::vector<CardReader>& readers);
std::string SwipeJson(const CardSwipe& swipe, int number, Privacy privacy);

}  // namespace quarlin::qlctl
