#pragma once

#include <stdexcept>

/// The file or the data is at fault; the text says how.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The command line is at fault; the text says how.
class WrongUsage : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
