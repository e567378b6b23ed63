#pragma once

#include "vumo/accessor/Accessor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// What went wrong with a scene file. It reaches Python as the subclass of `vumo.Error` that stands for its kind.
struct Failure
{
    // The names of classes in Python.
    static constexpr const char* kNotScene = "NotSceneError";
    static constexpr const char* kNotFound = "NotFoundError";
    static constexpr const char* kClosed = "ClosedError";
    static constexpr const char* kReadOnly = "ReadOnlyError";
    static constexpr const char* kRefused = "RefusedError";
    static constexpr const char* kChanged = "ChangedError";
    static constexpr const char* kBusy = "BusyError";

    /// What an accessor says about its last failure, with these messages.
    static Failure of(const vumo::Data::Accessor& accessor, const std::string& text);

    /// A new accessor for the file; throws where there is none for its extension.
    static std::unique_ptr<vumo::Data::Accessor> newAccessor(const std::string& fileName);

    const char* kind;
    std::string text;
    std::string file;
    std::optional<std::string> node = std::nullopt;
    std::optional<std::uint64_t> position = std::nullopt; ///< in the file, of the first byte of what is meant
    int systemError = 0;
};

/// What would move or free memory that arrays look at: a `BufferError` in Python.
struct StillViewed
{
    std::string text;
};

/// Lets all of them, and whatever else the library throws, arrive in Python as what they are.
void registerFailures();
