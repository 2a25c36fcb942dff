// Looks commands up.
#include "protocol/CommandCatalogue.h"

#include <algorithm>

const CommandDescriptor* findCommand(std::uint32_t nRequestId) noexcept {
    const auto rows = commandCatalogue();
    const auto row = std::ranges::find(rows, nRequestId, &CommandDescriptor::nRequestId);
    return row == rows.end() ? nullptr : &*row;
}
