// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target over the files of folders, without a fuzzer: what ./dev test does with the seeds.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (entry.is_regular_file()) {
                files.push_back(entry.path());
            }
        }
        std::ranges::sort(files);
        for (const std::filesystem::path& file : files) {
            // Before the run, so that the last name printed is that of the file that ended it.
            std::cout << file.string() << std::endl;
            std::ifstream stream(file, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    std::cout << count << " files\n";
    if (count == 0) {
        std::cerr << "no file to run\n";
        return 1;
    }
    return 0;
}
