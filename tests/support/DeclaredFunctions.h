// The functions that the library's face has, as told in two places.
#pragma once

#include <set>
#include <string>

#include "protocol/CommandCatalogue.h"
#include "support/TempDir.h"

// Adds a name; that of a second overload has "#2" behind it.
inline void addFunction(std::set<std::string>& setNames, const std::string& strName) {
    if (!setNames.insert(strName).second) {
        setNames.insert(strName + "#2");
    }
}

// Those that the header declares.
inline std::set<std::string> declaredFunctions() {
    const std::string strHeader = readFile(FLEETKIT_SOURCE_DIR "/src/device/FleetKit.h");
    const std::string strOpening = "    static int ";
    std::set<std::string> setNames;
    for (std::size_t nAt = strHeader.find(strOpening); nAt != std::string::npos;
         nAt = strHeader.find(strOpening, nAt)) {
        nAt += strOpening.size();
        addFunction(setNames, strHeader.substr(nAt, strHeader.find('(', nAt) - nAt));
    }
    return setNames;
}

// Those of the catalogue.
inline std::set<std::string> cataloguedFunctions() {
    std::set<std::string> setNames;
    for (const fleetkit::FunctionDescriptor& function : fleetkit::functionCatalogue()) {
        if (function.isExported) {
            addFunction(setNames, function.szName);
        }
    }
    return setNames;
}
