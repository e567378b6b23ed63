#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vumo::Data::detail
{
/// A number for a row of bytes that tells whether they are still what they were, unless somebody means them to look so.
/// The bytes come in pieces of any length. Each word of the bytes goes into one of four states, which do not wait for
/// one another: every read and write of a scene sums up all its metadata. Machines of another byte order get another
/// number.
class BlockChecksum
{
public:
    BlockChecksum() = default;
    explicit BlockChecksum(std::string_view bytes) { add(bytes); }

    void add(std::string_view bytes)
    {
        mLength += bytes.size();
        if (mHeld + bytes.size() < kStep)
            return hold(bytes);
        if (mHeld > 0)
        {
            const std::size_t missing = kStep - mHeld;
            hold(bytes.substr(0, missing));
            bytes.remove_prefix(missing);
            step(mStates, mRest.data());
            mHeld = 0;
        }
        States states = mStates; // in registers, as no byte can be a part of it
        for (; bytes.size() >= kStep; bytes.remove_prefix(kStep))
            step(states, bytes.data());
        mStates = states;
        hold(bytes);
    }

    std::uint64_t value() const
    {
        States states = mStates;
        std::array<char, kStep> last = {};
        std::memcpy(last.data(), mRest.data(), mHeld);
        step(states, last.data());
        std::uint64_t result = mLength;
        for (const std::uint64_t state : states)
            result = mixed(result, state);
        return result;
    }

private:
    using States = std::array<std::uint64_t, 4>;
    static constexpr std::size_t kStep = sizeof(States);

    /// Another word gives another result, and so does another state.
    static std::uint64_t mixed(std::uint64_t state, std::uint64_t word)
    {
        constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
        const std::uint64_t product = (state ^ word) * kMultiplier;
        return product << 32 | product >> 32; // the upper half depends on all bits, the lower one on few
    }

    static void step(States& states, const char* bytes)
    {
        States words;
        std::memcpy(words.data(), bytes, kStep);
        for (std::size_t i = 0; i < states.size(); ++i)
            states[i] = mixed(states[i], words[i]);
    }

    void hold(std::string_view bytes)
    {
        bytes.copy(mRest.data() + mHeld, bytes.size());
        mHeld += bytes.size();
    }

    States mStates = {};
    std::array<char, kStep> mRest = {};
    std::size_t mHeld = 0; // of mRest
    std::uint64_t mLength = 0;
};
} // namespace vumo::Data::detail
