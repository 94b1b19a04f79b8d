// SPDX-License-Identifier: Apache-2.0
#include "core/log.h"

#include <cstdio>

namespace quarlin::sim {

void Log::AddSink(std::ostream& sink) {
    const std::lock_guard hold(lock_);
    sinks_.push_back(&sink);
}

void Log::Write(double seconds, const std::string& who, const std::string& text) {
    char time[32];
    std::snprintf(time, sizeof time, "%9.3f  ", seconds);
    const std::lock_guard hold(lock_);
    for (std::ostream* const sink : sinks_) {
        *sink << time << who << ": " << text << std::endl;
    }
}

}  // namespace quarlin::sim
