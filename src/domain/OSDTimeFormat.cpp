// The time formats of the text overlay.
#include "domain/OSDTimeFormat.h"

const char* osdTimeFormatText(int nFormatId) noexcept {
    static constexpr const char* Texts[OSDTimeFormatCount] = {
        "ErrorFormat",         "YYYY-MM-DD hh:mm:ss", "hh:mm:ss YYYY-MM-DD",
        "MM/DD/YYYY hh:mm:ss", "hh:mm:ss MM/DD/YYYY", "weekday MM/DD/YYYY hh:mm:ss"};
    return Texts[nFormatId >= 0 && nFormatId < OSDTimeFormatCount ? nFormatId : 0];
}
