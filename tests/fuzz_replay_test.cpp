// The fuzzers' kept inputs, played once each: the seeds and every input that once showed a fault.
#include "fuzz/targets.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace {

void Replay(const char* target, std::string (*run)(const uint8_t*, size_t), size_t leastInputs)
{
    std::vector<std::filesystem::path> inputs;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(KESTREL_FUZZ_CORPUS) / target)) {
        inputs.push_back(entry.path());
    }
    std::sort(inputs.begin(), inputs.end());
    EXPECT_GE(inputs.size(), leastInputs);
    for (const auto& input : inputs) {
        std::ifstream file(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), "") << input.filename();
    }
}

} // namespace

TEST(FuzzReplay, MapDataInputsFindNoFault)
{
    Replay("map_data", FuzzMapData, 17);
}

TEST(FuzzReplay, BitmapInputsFindNoFault)
{
    Replay("bitmap", FuzzBitmap, 18);
}

TEST(FuzzReplay, SessionsFindNoFault)
{
    Replay("session", FuzzSession, 50);
}

TEST(FuzzReplay, ImportInputsFindNoFault)
{
    Replay("import", FuzzImport, 8);
}
