// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "view/card_swipe.h"

namespace quarlin::qlctl {

// A table of the readers, or that there is none.
std::string CardReaderTable(const std::vector<CardReader>& readers);

// A swipe in several lines; number counts from 1.
std::string SwipeText(const CardSwipe& swipe, int number, Privacy privacy);

}  // namespace quarlin::qlctl
