// The names of `get` and `set`, and the options that choose.
#include "Property.h"

#include <fleetkit/DeviceType.h>

#include "Suggestion.h"
#include "UsageError.h"

using namespace fleetkit;

namespace {

// What a number of a device type stands for, as a bit of the types that a property serves.
unsigned typeOf(int nType) {
    if (isCamera(nType)) {
        return OfCamera;
    }
    return isRecorder(nType) ? unsigned{OfRecorder} : 0U;
}

}  // namespace

const std::vector<Selector>& selectors() {
    static const std::vector<Selector> vecSelectors = {
        {"--type", "Kind of device by its number, or ipc (1) or nvr (5)", SelectorBit::Type,
         &Selection::type},
        {"--channel", "Channel, by the device's number", SelectorBit::Channel, &Selection::channel},
        {"--stream", "Stream of the channel", SelectorBit::Stream, &Selection::stream},
        {"--language", "Language of the texts, by its number in `get language`",
         SelectorBit::Language, &Selection::language},
        {"--timezone", "Time zone, by its number in `get timezone-ability`", SelectorBit::TimeZone,
         &Selection::timeZone},
    };
    return vecSelectors;
}

const Property& findProperty(const std::string& strName) {
    std::vector<std::string> vecNames;
    for (const Property& property : properties()) {
        if (strName == property.szName) {
            return property;
        }
        vecNames.emplace_back(property.szName);
    }
    throw UsageError("unknown name '" + strName + "'" + suggest(strName, "names", vecNames));
}

void requireServedType(const Property& property, const Selection& selection) {
    if (!selection.type || property.nServes == 0) {
        return;
    }
    const unsigned nType = typeOf(*selection.type);
    if (nType == 0) {
        throw UsageError("--type " + std::to_string(*selection.type) +
                         " is neither a camera nor a recorder; say ipc or nvr");
    }
    if ((property.nServes & nType) == 0) {
        throw UsageError(std::string(property.szName) +
                         (nType == OfCamera ? " is for recorders only, a camera has none"
                                            : " is for cameras only, a recorder has none"));
    }
}

void requireSelectors(const Property& property, const Selection& selection) {
    for (const Selector& selector : selectors()) {
        if ((property.nNeeds & selector.nBit) != 0 && !(selection.*selector.pMember)) {
            throw UsageError(std::string(property.szName) + " needs " + selector.szOption);
        }
    }
}

void refuseOtherSelectors(const std::vector<const Property*>& vecProperties,
                          const Selection& selection) {
    unsigned nUses = 0;
    for (const Property* pProperty : vecProperties) {
        nUses |= pProperty->nUses;
    }
    for (const Selector& selector : selectors()) {
        if (selection.*selector.pMember && (nUses & selector.nBit) == 0) {
            throw UsageError(std::string(selector.szOption) + " has no meaning for " +
                             vecProperties.front()->szName);
        }
    }
}
