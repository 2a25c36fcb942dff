// The console log as users of the library see it: how much it says.
//
// At level 3 whole command bodies are printed, credentials of other services inside them included.
#pragma once

#include <string>
#include <vector>

#include "Product/Technic/Export.h"

namespace fleetkit {

// Levels of the log's lines.
namespace LogLevel {
constexpr int Failure = 1;  // a failed step
constexpr int Trace = 3;    // everything else
}  // namespace LogLevel

// Lets lines at or below the threshold out to standard output; 0, as at the start, silences them
// all. With file names, only lines of these source files, by their bare names. False, and nothing
// changes, when there are more than 50 names. Callable from any thread.
//
//     fleetkit::setLogFilter(fleetkit::LogLevel::Failure);
FLEETKIT_EXPORT bool setLogFilter(int nThreshold,
                                  const std::vector<std::string>& vecFileNames = {});

}  // namespace fleetkit
