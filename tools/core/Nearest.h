#pragma once

#include <string>
#include <vector>

/// The tail of a message about a name that there is not: "; did you mean ...?" with those of the candidates that are
/// spelt nearly like it, at most three; empty when none is.
std::string didYouMean(const std::string& name, const std::vector<std::string>& candidates);
