#pragma once

#include <random>
#include <string>

namespace vumo::test
{
/// Random numbers that are the same everywhere for one seed. Put seedText() into a SCOPED_TRACE: with it a
/// failure can be played again.
class Random
{
public:
    explicit Random(unsigned int seed = std::random_device()()) : mSeed(seed), mEngine(seed) {}

    /// A number from 0 up to but not including `end`.
    unsigned int below(unsigned int end) { return static_cast<unsigned int>(mEngine() % end); }

    std::string seedText() const { return "seed " + std::to_string(mSeed); }

private:
    unsigned int mSeed;
    std::mt19937 mEngine;
};
} // namespace vumo::test
