// Runs every fuzz target over its corpus and over bytes from a fixed seed. A target that finds something ends
// the process.

#include "fuzz/Fuzz.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace Tervane::Math::Fuzz {

namespace {

struct Target {
    std::string name;
    void (*run)(Input&);
};

void PrintTo(Target const& target, std::ostream* stream) {
    *stream << target.name;
}

class FuzzTarget : public testing::TestWithParam<Target> {
protected:
    static void run(std::vector<std::uint8_t> const& bytes) {
        Input input(bytes.data(), bytes.size());
        GetParam().run(input);
    }
};

TEST_P(FuzzTarget, HoldsOnItsCorpus) {
    std::vector<std::filesystem::path> files;
    for (auto const& entry :
         std::filesystem::directory_iterator(std::filesystem::path(TVNMATH_FUZZ_CORPUS) / GetParam().name))
        files.push_back(entry.path());
    ASSERT_FALSE(files.empty());
    std::sort(files.begin(), files.end());
    for (auto const& file : files) {
        SCOPED_TRACE(file.filename().string());
        std::ifstream stream(file, std::ios::binary);
        ASSERT_TRUE(stream);
        run({std::istreambuf_iterator<char>(stream), {}});
    }
}

TEST_P(FuzzTarget, HoldsOnBytesFromASeed) {
    std::mt19937 generator(20);
    for (int i = 0; i < 500; ++i) {
        std::vector<std::uint8_t> bytes(1 + generator() % 256);
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(generator()); });
        run(bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Families, FuzzTarget,
                         testing::Values(Target{"Text", fuzzText}, Target{"Expected", fuzzExpected},
                                         Target{"Containers", fuzzContainers},
                                         Target{"Arithmetic", fuzzArithmetic},
                                         Target{"Functions", fuzzFunctions},
                                         Target{"LinearAlgebra", fuzzLinearAlgebra},
                                         Target{"Signal", fuzzSignal}),
                         [](auto const& parameter) { return parameter.param.name; });

} // namespace

} // namespace Tervane::Math::Fuzz
