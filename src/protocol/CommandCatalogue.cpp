// Looks commands and functions up.
#include "protocol/CommandCatalogue.h"

#include <algorithm>

#include "protocol/CommandTable.h"

namespace fleetkit {

namespace {

template <class Row, class Value>
const Row* findRow(const Rows<Row>& rows, const Value& value, auto member) noexcept {
    const auto* pRow = std::ranges::find(rows, value, member);
    return pRow == rows.end() ? nullptr : pRow;
}

}  // namespace

Rows<CommandDescriptor> commandCatalogue() noexcept {
    return commandTable;
}

const CommandDescriptor* findCommand(std::uint32_t nRequestId) noexcept {
    return findRow(commandTable, nRequestId, &CommandDescriptor::nRequestId);
}

Rows<FunctionDescriptor> functionCatalogue() noexcept {
    return functionTable;
}

const FunctionDescriptor* findFunction(const std::string& strName) noexcept {
    return findRow(functionTable, std::string_view(strName),
                   [](const FunctionDescriptor& row) { return std::string_view(row.szName); });
}

const FunctionDescriptor* findFunction(std::uint32_t nRequestId) noexcept {
    return findRow(functionTable, nRequestId, &FunctionDescriptor::nRequestId);
}

}  // namespace fleetkit
