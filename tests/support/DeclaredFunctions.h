// The functions that the library's face declares.
#pragma once

#include <set>
#include <string>

#include "support/TempDir.h"

// Their names; the second of two overloads has "#2" behind it.
inline std::set<std::string> declaredFunctions() {
    const std::string strHeader = readFile(FLEETKIT_SOURCE_DIR "/src/device/FleetKit.h");
    const std::string strOpening = "    static int ";
    std::set<std::string> setNames;
    for (std::size_t nAt = strHeader.find(strOpening); nAt != std::string::npos;
         nAt = strHeader.find(strOpening, nAt)) {
        nAt += strOpening.size();
        const std::string strName = strHeader.substr(nAt, strHeader.find('(', nAt) - nAt);
        if (!setNames.insert(strName).second) {
            setNames.insert(strName + "#2");
        }
    }
    return setNames;
}
