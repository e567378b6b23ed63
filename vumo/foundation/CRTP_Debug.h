#pragma once

namespace vumo::Debug
{
/// Lets an object of class T describe itself without the caller knowing T.
///
/// Derive T from it once for each kind of request: `CRTP_Debug<T, Print>`, `CRTP_Debug<T, Footprint>`.
template <class T, class Request>
class CRTP_Debug
{
public:
    /// Forwards to `T::Debug`.
    virtual bool debug(Request& request) const { return T::Debug(static_cast<const T*>(this), request); }

protected:
    ~CRTP_Debug() = default;
};
} // namespace vumo::Debug
