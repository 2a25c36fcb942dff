// The table of commands: its counts and its oddities.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "protocol/CommandCatalogue.h"

namespace {

auto countIf(auto condition) {
    return std::ranges::count_if(commandCatalogue(), condition);
}

std::uint32_t responseOf(std::uint32_t nRequestId) {
    const CommandDescriptor* pRow = findCommand(nRequestId);
    return pRow ? pRow->nResponseId : 0;
}

TEST(CommandCatalogueTest, HoldsEveryCommandOfTheProtocol) {
    EXPECT_EQ(commandCatalogue().size(), 509U);
    EXPECT_EQ(std::ranges::count(commandCatalogue(), 10000U, &CommandDescriptor::nResponseId), 209);
    std::map<std::uint32_t, int> mapRowsOfOperation;
    for (const auto& row : commandCatalogue()) {
        ++mapRowsOfOperation[row.nOperation];
    }
    EXPECT_EQ(mapRowsOfOperation,
              (std::map<std::uint32_t, int>{{1, 149}, {2, 223}, {3, 38}, {4, 99}}));
}

TEST(CommandCatalogueTest, KeepsTheOrderOfItsRows) {
    const auto rows = commandCatalogue();
    EXPECT_EQ(rows.front().nRequestId, 11004U);
    EXPECT_EQ(rows[9].nRequestId, 11001U);
    EXPECT_EQ(rows.back().nRequestId, 32765U);
    EXPECT_EQ(rows.back().nResponseId, 32766U);
    EXPECT_EQ(rows.back().nParamGroup, 1006U);
    EXPECT_EQ(rows.back().nOperation, 2U);
}

TEST(CommandCatalogueTest, OnlyTwoRequestsStandMoreThanOnceAndAlwaysAlike) {
    std::map<std::uint32_t, int> mapRepeated;
    for (const auto& row : commandCatalogue()) {
        const auto* pFirst = findCommand(row.nRequestId);
        ASSERT_NE(pFirst, nullptr);
        if (pFirst != &row) {
            ++mapRepeated[row.nRequestId];
            EXPECT_EQ(pFirst->nResponseId, row.nResponseId);
            EXPECT_EQ(pFirst->nParamGroup, row.nParamGroup);
            EXPECT_EQ(pFirst->nOperation, row.nOperation);
        }
    }
    EXPECT_EQ(mapRepeated, (std::map<std::uint32_t, int>{{15023, 1}, {15024, 2}}));
}

TEST(CommandCatalogueTest, TellsTheReplyOfEachRequest) {
    const std::map<std::uint32_t, std::uint32_t> mapResponses = {
        {11001, 11002}, {11003, 10000}, {11007, 10000}, {30507, 30508},
        {32714, 10000}, {14006, 14006}, {32811, 32811},  // answered by their own id
        {43860, 41025}, {43859, 43860},                  // a request that is also a reply
        {34901, 34902}, {34903, 34902},                  // two requests, one reply
        {35033, 35035}, {35034, 35035}, {31025, 31026}, {31041, 31026},
    };
    for (const auto& [nRequest, nResponse] : mapResponses) {
        EXPECT_EQ(responseOf(nRequest), nResponse) << nRequest;
    }
}

TEST(CommandCatalogueTest, ARepliesIdIsNoRequest) {
    for (const std::uint32_t nId : {0U, 10000U, 11002U, 32505U, 0xFFFFFFFFU}) {
        EXPECT_EQ(findCommand(nId), nullptr) << nId;
    }
}

}  // namespace
