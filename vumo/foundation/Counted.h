#pragma once

namespace vumo
{
/// Counts the objects of class T in its statics `_objectsCreated` and `_objectsAlive`. An empty base, to be derived
/// from privately, which takes no room; the statics are T's own, so that `T::_objectsAlive` names one thing only.
///
/// All such counting goes through here. Not safe to use from several threads at once.
template <class T>
class Counted
{
protected:
    Counted() noexcept
    {
        ++T::_objectsCreated;
        ++T::_objectsAlive;
    }

    Counted(const Counted&) noexcept : Counted() {}
    Counted& operator=(const Counted&) noexcept = default;
    ~Counted() { --T::_objectsAlive; }
};
} // namespace vumo
