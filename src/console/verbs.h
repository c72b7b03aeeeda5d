// The verbs. Each does its work through the tool's own windows and gives the exit status.
#pragma once

#include "console/exit_status.h"
#include "console/session.h"

namespace gainsmith {

using Verb = ExitStatus (*)(Session& session);

// port_verbs.cpp
ExitStatus Ports(Session& session);
ExitStatus Doctor(Session& session);

// setting_verbs.cpp
ExitStatus Show(Session& session);
ExitStatus Save(Session& session);
ExitStatus Diff(Session& session);

// load_verbs.cpp
ExitStatus Load(Session& session);
ExitStatus Reset(Session& session);

// error_verb.cpp
ExitStatus Errors(Session& session);

// motion_verbs.cpp
ExitStatus Step(Session& session);
ExitStatus Move(Session& session);

// watch_verb.cpp
ExitStatus Watch(Session& session);

// Nothing for a name that is no verb's.
Verb VerbNamed(const std::string& name);

}  // namespace gainsmith
