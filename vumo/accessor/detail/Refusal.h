#pragma once

#include "vumo/accessor/detail/File.h"

#include <string>

namespace vumo::Data::detail
{
// The two ways in which a step fails: most messages are appended, those that say that a file is no scene replace all.

/// False, with the message appended to `errors`.
inline bool refuse(std::string& errors, const std::string& message)
{
    errors += message;
    return false;
}

/// False, with the message in place of what `errors` held.
inline bool replaceErrors(std::string& errors, const std::string& message)
{
    errors = message;
    return false;
}

/// What is said where other metadata stands in the file than was read.
inline std::string changedMessage(const std::string& fileName)
{
    return "The metadata of " + fileName + " has been changed by somebody else since it was read.\n";
}

/// A sentence of the library's own about a call of the system that failed, with what the system says about it.
inline std::string withReason(const std::string& sentence, int systemError)
{
    const std::string reason = systemReason(systemError);
    return sentence + (reason.empty() ? "" : ": ") + reason + ".\n";
}
} // namespace vumo::Data::detail
