// What fleetctl asks of the operating system: its standard streams, questions at the terminal.
#pragma once

#include <cstdio>
#include <optional>
#include <string>

// Gives standard output to the caller alone: whatever else prints there, as the library does, goes
// to standard error from now on. To be called first of all. Null when there is no standard output.
std::FILE* claimStandardOutput();

bool isTerminal(std::FILE* pStream);

// How many characters a line of the terminal holds. Nothing for a stream that is no terminal, or
// one that does not know.
std::optional<std::size_t> terminalWidth(std::FILE* pStream);

// Whether there is somebody to answer a question.
bool canAsk();

// Asks on standard error for a text that is not shown while it is typed. Nothing at the end of the
// input.
std::optional<std::string> askSecret(const std::string& strQuestion);

// Asks until the answer is yes or no; no at the end of the input.
bool askYesNo(const std::string& strQuestion);
