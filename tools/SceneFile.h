#pragma once

#include "Commands.h"
#include "Failure.h"
#include "vumo/accessor/Accessor.h"
#include "vumo/data/Stream.h"

#include <memory>
#include <string>

/// The metadata of a scene file. What is not read stays in the file as it is. Whatever fails throws a `Failure` that
/// names the file once.
class SceneFile
{
public:
    enum eUse
    {
        kLook,
        kEdit ///< the file must be writable, too
    };

    /// What is to be said about a scene that isEmpty().
    static constexpr const char* kNoMetadata =
        "there is no metadata yet; a program attaches it with the library, as examples/write_scene.cpp does";

    /// Reads the metadata of one node, or all for null.
    SceneFile(const std::string& fileName, eUse use, const std::string* node = nullptr);

    const vumo::Data::Accessor& metadata() const { return *mAccessor; }

    bool isEmpty() const;

    /// What a block is called that cannot be read, and why it cannot; ends with a newline.
    static std::string unreadableText(const vumo::Data::UnreadBlock& block);

    /// The stream at that address, owned by the metadata.
    vumo::Data::Stream& stream(const Address& address);

    /// Writes the metadata back into the file.
    void write(vumo::Data::eNumbers numbers);

    /// A failure of this file.
    Failure failure(const std::string& message) const;

private:
    std::string mFileName;
    std::unique_ptr<vumo::Data::Accessor> mAccessor;
};
