// The protocol's vocabulary in the terminal: one record or command, or the list of all
// records.
#pragma once

#include "CommandLine.h"
#include "Output.h"

// UsageError for an unknown name or id.
int runVocabulary(const CommandLine& line, Output& output);
