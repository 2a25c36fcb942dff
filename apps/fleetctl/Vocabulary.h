// The protocol's vocabulary in the terminal: one record or command, or the list of all
// records.
#pragma once

#include "CommandLine.h"
#include "Output.h"

// UsageError for a name or id that is none.
int runVocabulary(const CommandLine& line, Output& output);
