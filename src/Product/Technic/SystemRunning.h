// The process-wide running flag: once it is cleared, every GThread ends at its next round.
#pragma once

#include <string>

// What the device side runs to restart itself; nothing in this library runs it.
inline constexpr const char* RebootCommand = "/factory_setting/reboot.sh &";

// True from the start of the process until somebody clears the flag. Callable from any thread.
bool isSystemRunning() noexcept;

// Prints flag and reason on standard output and sets the flag; clearing it also writes the reason
// to the system stop log. Nothing in this library sets it back to true. Callable from any thread.
void setSystemRunningFlag(bool bRunning, const std::string& strReason);
