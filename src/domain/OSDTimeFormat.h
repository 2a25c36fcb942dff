// The time formats of the text overlay, which OSDGlobalParam and OSDTimeFormatType number.
#pragma once

// How many formats there are, the one for errors included.
inline constexpr int OSDTimeFormatCount = 6;

// The text of a format, such as "YYYY-MM-DD hh:mm:ss" for 1; "ErrorFormat" for 0 and for a number
// that names none. Never null; callable from any thread.
const char* osdTimeFormatText(int nFormatId) noexcept;
