#pragma once

#include "Commands.h"
#include "Failure.h"
#include "vumo/accessor/Accessor.h"
#include "vumo/data/Stream.h"

#include <memory>
#include <string>

/// The metadata of a scene file that was read whole. Whatever fails throws a `Failure` that names the file.
class SceneFile
{
public:
    explicit SceneFile(const std::string& fileName);

    const vumo::Data::Accessor& metadata() const { return *mAccessor; }

    /// The stream at that address, owned by the metadata.
    vumo::Data::Stream& stream(const Address& address);

    /// Writes the metadata back into the file.
    void write() const;

    /// A failure of this file.
    Failure failure(const std::string& message) const;

private:
    std::string mFileName;
    std::unique_ptr<vumo::Data::Accessor> mAccessor;
};
