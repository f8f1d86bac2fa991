// Runs a fuzz target on the files of its corpus, once each, for builds without a fuzzing engine.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/fuzz.h"

int main(int argc, char** argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
        {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> input{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.data()), input.size());
            ++count;
        }
    std::printf("%d inputs replayed\n", count);
    return count > 0 ? 0 : 1;
}
