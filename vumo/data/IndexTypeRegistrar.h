#pragma once

#include "vumo/data/CRTP_IndexType.h"
#include "vumo/data/Index.h"

namespace vumo::Data
{
/// Keeps an index type registered for as long as it lives: what a plug-in uses that may be unloaded.
///
///     const std::string GridIndex::myTypeName = "grid";
///     const IndexTypeRegistrar<GridIndex> theRegistrar; // after the name, which it reads
///
/// Where the name is taken the type is not registered, and the one that has it stays. Indices and streams of the type
/// have to be gone before the plug-in is. Build it with `-fno-gnu-unique` where the compiler is g++: without, the
/// system never unloads a library that has templates.
template <class T>
class IndexTypeRegistrar
{
public:
    IndexTypeRegistrar() : mIsRegistered(Index::registerType(T::myTypeName, &CRTP_IndexType<T>::doCreate)) {}
    IndexTypeRegistrar(const IndexTypeRegistrar&) = delete;
    IndexTypeRegistrar& operator=(const IndexTypeRegistrar&) = delete;

    ~IndexTypeRegistrar()
    {
        if (mIsRegistered)
            Index::deregisterType(T::myTypeName);
    }

    bool isRegistered() const { return mIsRegistered; }

private:
    bool mIsRegistered;
};
} // namespace vumo::Data
