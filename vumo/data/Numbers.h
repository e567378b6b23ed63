#pragma once

#include "vumo/foundation/Export.h"

#include <iosfwd>

namespace vumo::Data
{
/// How floating-point numbers become text.
enum eNumbers
{
    /// With six significant digits, as a new output stream writes them. A number that needs more is not the same when
    /// it is read again.
    kSixDigits,

    /// With the fewest digits that read back to the very same value. What six digits hold has the same text as with
    /// six: 100000 stays 100000.
    kExact
};

/// Lets the raw formats write exact numbers to an output, whatever its precision and its format of floating-point
/// numbers are: `out << vumo::Data::exactNumbers`. Numbers that the caller inserts are not touched.
VUMO_EXPORT std::ios_base& exactNumbers(std::ios_base& out);

/// Undoes exactNumbers(): precision and format of the output count again.
VUMO_EXPORT std::ios_base& sixDigits(std::ios_base& out);
} // namespace vumo::Data
