// Runs a fuzz target once over every file of a folder: what the fuzzer found before stays found.
// Linked with a target instead of the fuzzer; not part of the test programs.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error)) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fprintf(stderr, "no inputs in %s\n", argv[1]);
        return 1;
    }
    for (const auto& file : files) {
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
        std::printf("%s\n", file.filename().string().c_str());
        std::fflush(stdout); // the last line names the input that ended the program
        LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    }
    return 0;
}
