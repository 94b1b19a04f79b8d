// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// The few ANSI sequences that a redrawn screen needs.
namespace quarlin::qlctl::terminal {

inline const std::string kGreen = "\x1b[32m";
inline const std::string kDim = "\x1b[2m";
inline const std::string kPlain = "\x1b[0m";

// Clears the screen and hides the cursor.
std::string Begin();

// Draws the lines over what is there. Nothing is cleared first, so that the picture does not flicker.
std::string Frame(const std::vector<std::string>& lines);

// Shows the cursor again, below the picture.
std::string End();

}  // namespace quarlin::qlctl::terminal
