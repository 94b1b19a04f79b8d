// SPDX-License-Identifier: Apache-2.0
#include "captured_output.h"

#include <array>
#include <cstdio>
#include <stdexcept>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

namespace quarlin::test {

namespace {

constexpr int kOutput = 1;

#ifdef _WIN32
int MakePipe(int* ends) {
    return _pipe(ends, 1 << 16, _O_BINARY);
}
int Duplicate(int file) {
    return _dup(file);
}
int Replace(int file, int by) {
    return _dup2(by, file);
}
int Read(int file, char* to, unsigned size) {
    return _read(file, to, size);
}
void Close(int file) {
    _close(file);
}
#else
int MakePipe(int* ends) {
    return pipe(ends);
}
int Duplicate(int file) {
    return dup(file);
}
int Replace(int file, int by) {
    return dup2(by, file);
}
int Read(int file, char* to, unsigned size) {
    return static_cast<int>(read(file, to, size));
}
void Close(int file) {
    close(file);
}
#endif

}  // namespace

CapturedOutput::CapturedOutput() {
    std::fflush(stdout);
    int ends[2];
    saved_ = Duplicate(kOutput);
    if (saved_ < 0 || MakePipe(ends) != 0 || Replace(kOutput, ends[1]) < 0) {
        throw std::runtime_error("cannot capture the standard output");
    }
    readEnd_ = ends[0];
    Close(ends[1]);
}

CapturedOutput::~CapturedOutput() {
    Restore();
    Close(readEnd_);
}

void CapturedOutput::Restore() {
    if (saved_ >= 0) {
        // Closes the last writing end of the pipe, so that reading ends.
        Replace(kOutput, saved_);
        Close(saved_);
        saved_ = -1;
    }
}

std::string CapturedOutput::Take() {
    Restore();
    std::string text;
    std::array<char, 4096> part;
    for (int count; (count = Read(readEnd_, part.data(), part.size())) > 0;) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace quarlin::test
