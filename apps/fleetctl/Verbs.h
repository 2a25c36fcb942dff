// The verbs of fleetctl. Each returns an exit status and throws UsageError before anything is sent
// that would change the device.
#pragma once

#include "CommandLine.h"
#include "Output.h"

int runGet(const CommandLine& line, Output& output);
int runSet(const CommandLine& line, Output& output);
int runDo(const CommandLine& line, Output& output);
