// Replays saved fuzz inputs through a fuzz target without libFuzzer, so that
// the corpora and findings run as ordinary tests. Arguments are files or
// folders of files; a missing folder is skipped.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv)
{
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i)
    {
        if (fs::is_directory(argv[i]))
            for (const fs::directory_entry& entry :
                 fs::directory_iterator(argv[i]))
                inputs.push_back(entry.path());
        else if (fs::exists(argv[i]))
            inputs.push_back(argv[i]);
    }
    // A fixed order, so that a failure replays the same way every time.
    std::sort(inputs.begin(), inputs.end());
    for (const fs::path& input : inputs)
    {
        std::printf("%s\n", input.c_str());
        std::fflush(stdout);
        std::ifstream in(input, std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(in), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()),
                               bytes.size());
    }
    std::printf("Replayed %zu inputs.\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
