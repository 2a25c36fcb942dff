// The table of commands: its oddities.
#include <gtest/gtest.h>

#include <map>

#include "protocol/CommandCatalogue.h"

using namespace fleetkit;

namespace {

using Counts = std::map<std::uint32_t, int>;

TEST(CommandCatalogueTest, OnlyTwoRequestsStandMoreThanOnceAndAlwaysAlike) {
    Counts mapRepeated;
    for (const auto& row : commandCatalogue()) {
        const auto* pFirst = findCommand(row.nRequestId);
        ASSERT_NE(pFirst, nullptr);
        mapRepeated[row.nRequestId] += pFirst != &row ? 1 : 0;
        EXPECT_EQ(pFirst->nResponseId, row.nResponseId);
        EXPECT_EQ(pFirst->nParamGroup, row.nParamGroup);
        EXPECT_EQ(pFirst->nOperation, row.nOperation);
    }
    std::erase_if(mapRepeated, [](const auto& entry) { return entry.second == 0; });
    EXPECT_EQ(mapRepeated, (Counts{{15023, 1}, {15024, 2}}));
}

TEST(CommandCatalogueTest, TellsTheReplyOfEachRequest) {
    const std::map<std::uint32_t, std::uint32_t> mapResponses = {
        {11001, 11002}, {11003, 10000}, {11007, 10000}, {30507, 30508}, {32714, 10000},
        {14006, 14006}, {32811, 32811},  // answered by their own id
        {43860, 41025}, {43859, 43860},  // a request that is also a reply
        {34901, 34902}, {34903, 34902},  // two requests, one reply
        {35033, 35035}, {35034, 35035}, {31025, 31026}, {31041, 31026}, {32765, 32766},
    };
    for (const auto& [nRequest, nResponse] : mapResponses) {
        ASSERT_NE(findCommand(nRequest), nullptr) << nRequest;
        EXPECT_EQ(findCommand(nRequest)->nResponseId, nResponse) << nRequest;
    }
    for (const std::uint32_t nReplyOnly : {0U, 10000U, 11002U, 32505U, 0xFFFFFFFFU}) {
        EXPECT_EQ(findCommand(nReplyOnly), nullptr) << nReplyOnly;
    }
}

}  // namespace
