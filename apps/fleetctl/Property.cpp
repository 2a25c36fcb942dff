// The names of `get` and `set`, and the options that choose.
#include "Property.h"

#include "UsageError.h"

namespace {

std::string joinedNames() {
    std::string strNames;
    for (const Property& property : properties()) {
        strNames += std::string(" ") + property.szName;
    }
    return strNames;
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
    for (const Property& property : properties()) {
        if (strName == property.szName) {
            return property;
        }
    }
    throw UsageError("unknown name '" + strName + "'; the names are:" + joinedNames());
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
