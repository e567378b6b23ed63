#pragma once

#include "core/Session.h"
#include "edit/Edit.h"

#include <string>

/// Adds a command that copies or moves metadata: cp or mv.
void addTransfer(Session& session, Edit::eVerb verb, const std::string& name, const std::string& description);
