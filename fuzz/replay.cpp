// Runs a fuzzer's function over the files in the folders that are named, without the fuzzer.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(stream), {}};
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
            ++inputs;
        }
    }
    return inputs > 0 ? 0 : 1;
}
