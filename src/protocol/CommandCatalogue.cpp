// Looks commands up.
#include "protocol/CommandCatalogue.h"

#include <algorithm>

#include "protocol/CommandTable.h"

namespace fleetkit {

const std::vector<CommandDescriptor>& commandCatalogue() {
    static const std::vector<CommandDescriptor> vecRows(commandTable,
                                                        commandTable + commandTableSize);
    return vecRows;
}

const CommandDescriptor* findCommand(std::uint32_t nRequestId) noexcept {
    const auto& vecRows = commandCatalogue();
    const auto row = std::ranges::find(vecRows, nRequestId, &CommandDescriptor::nRequestId);
    return row == vecRows.end() ? nullptr : &*row;
}

}  // namespace fleetkit
