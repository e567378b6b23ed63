#pragma once

#include <utility>

namespace vumo
{
/// Holds one reference on a `RefCounted` object, or none when it is null.
///
/// Assignment takes the new reference before it releases the old one, so assigning an object to
/// itself, or one that only the old object keeps alive, is safe.
template <class T>
class Ref
{
public:
    Ref() = default;

    explicit Ref(T* object) : mObject(object)
    {
        if (mObject)
            mObject->ref();
    }

    Ref(const Ref& other) : Ref(other.mObject) {}

    /// Takes the reference over; `other` is null afterwards.
    Ref(Ref&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}

    Ref& operator=(const Ref& other)
    {
        Ref(other).swap(*this);
        return *this;
    }

    Ref& operator=(Ref&& other) noexcept
    {
        Ref(std::move(other)).swap(*this);
        return *this;
    }

    ~Ref()
    {
        if (mObject)
            mObject->unref();
    }

    void swap(Ref& other) noexcept { std::swap(mObject, other.mObject); }

    /// Borrowed: alive for as long as somebody holds a reference on it.
    T* get() const { return mObject; }
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return mObject != nullptr; }

private:
    T* mObject = nullptr;
};
} // namespace vumo
