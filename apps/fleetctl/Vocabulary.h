// The protocol's vocabulary in the terminal: one record, or the list of all.
#pragma once

#include "CommandLine.h"
#include "Output.h"

// UsageError for a name or id that is none. JSON only when asked for.
int runVocabulary(const CommandLine& line, Output& output);
