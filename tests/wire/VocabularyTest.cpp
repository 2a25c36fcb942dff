// The compiled tables against vocabulary.txt, the one place that tells their sizes and their odd
// names.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

#include "protocol/CommandCatalogue.h"
#include "support/RecordLists.h"

using namespace fleetkit;

namespace {

// Lines, so that a difference shows as one.
using Facts = std::string;

Facts writtenFacts() {
    std::ifstream file(FLEETKIT_SOURCE_DIR "/tests/wire/vocabulary.txt");
    Facts facts;
    for (std::string strLine; std::getline(file, strLine);) {
        if (!strLine.empty() && strLine[0] != '#') {
            facts += strLine + "\n";
        }
    }
    return facts;
}

void tell(Facts& facts, const std::string& strWhat, std::ptrdiff_t nCount) {
    facts += strWhat + ": " + std::to_string(nCount) + "\n";
}

void tellRecords(Facts& facts) {
    std::set<std::string> setNames;
    std::set<std::string> setLists;
    std::ptrdiff_t nLists = 0;
    for (const RecordDescriptor* pRecord : namedRecords()) {
        setNames.insert(pRecord->szName);
        if (pRecord->szList != nullptr) {
            setLists.insert(pRecord->szList);
            ++nLists;
        }
    }
    tell(facts, "records", std::ssize(allRecords()));
    tell(facts, "records with a name", std::ssize(namedRecords()));
    tell(facts, "names", std::ssize(setNames));
    tell(facts, "records with a list name", nLists);
    tell(facts, "list names", std::ssize(setLists));
}

bool isAttribute(const FieldDescriptor& field) {
    return field.nKind <= FieldKind::String || field.nKind == FieldKind::JoinedInts ||
           field.nKind == FieldKind::JoinedRecords;
}

void tellFields(Facts& facts) {
    const auto tellMarked = [&](const char* szWhat, Presence nPresence) {
        std::ptrdiff_t nFields = 0;
        for (const RecordDescriptor* pRecord : recordDescriptors()) {
            nFields += std::ranges::count_if(*pRecord, [&](const FieldDescriptor& field) {
                return isAttribute(field) && field.nPresence == nPresence;
            });
        }
        tell(facts, szWhat, nFields);
    };
    tellMarked("fields set to nothing when absent", Presence::Zeroed);
    tellMarked("fields that keep their value", Presence::Kept);
    tellMarked("fields that keep it and tell", Presence::Logged);
    tellMarked("fields that fall back", Presence::Fallback);
    tellMarked("fields that are required", Presence::Required);
    tell(facts, "records that do not come back as they were written",
         std::ranges::count_if(allRecords(), [](const auto* p) { return !isTwoWay(*p); }));
}

void tellCommands(Facts& facts) {
    const auto commands = commandCatalogue();
    tell(facts, "commands", std::ssize(commands));
    tell(facts, "commands with a plain acknowledgement",
         std::ranges::count(commands, 10000U, &CommandDescriptor::nResponseId));
    std::uint32_t nOperation = 1;
    for (const char* szWhat :
         {"writing commands", "reading commands", "other commands", "actions"}) {
        tell(facts, szWhat,
             std::ranges::count(commands, nOperation++, &CommandDescriptor::nOperation));
    }
    tell(facts, "first command", commands[0].nRequestId);
    tell(facts, "last command", commands[commands.size() - 1].nRequestId);
}

// Those that are not what the rule makes of the record's class and name.
void tellOddNames(Facts& facts) {
    Facts names;
    Facts lists;
    Facts entries;
    for (const RecordDescriptor* pRecord : namedRecords()) {
        const std::string strClass = pRecord->szClass;
        const std::string strName = pRecord->szName;
        const std::string strList = pRecord->szList == nullptr ? strName + "List" : pRecord->szList;
        if (strClass != strName && strClass != "Et" + strName) {
            names += "name of " + strClass + ": " + strName + "\n";
        }
        if (strList != strName + "List") {
            lists += "list of " + strName + ": " + strList + "\n";
        }
        if (pRecord->szEntry != strClass) {
            entries += "entry of " + strClass + ": " + pRecord->szEntry + "\n";
        }
    }
    facts += names + lists + entries;
}

TEST(Vocabulary, IsWhatIsWrittenDownOfIt) {
    Facts facts;
    tellRecords(facts);
    tellFields(facts);
    tellCommands(facts);
    tellOddNames(facts);
    EXPECT_EQ(facts, writtenFacts());
}

}  // namespace
