// Reads the descriptors of records and the catalogue of commands.
#include "Vocabulary.h"

#include <fleetkit/protocol/CommandCatalogue.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "ExitCode.h"
#include "UsageError.h"

namespace {

constexpr std::array<const char*, 15> TypeNames = {
    "bool",    "int",    "unsigned short", "float",          "double",
    "string",  "record", "list of",        "list of int",    "list of string",
    "element", "each",   "joined ints",    "joined list of", "base64 block",
};

std::string text(const char* szText) {
    return szText != nullptr ? szText : "";
}

std::string typeOf(const FieldDescriptor& field) {
    const std::string strType = TypeNames[static_cast<std::size_t>(field.nKind)];
    return field.nested != nullptr ? strType + ' ' + field.nested().szClass : strType;
}

std::string absenceOf(const FieldDescriptor& field) {
    switch (field.nPresence) {
        case Presence::Kept:
            return "kept";
        case Presence::Logged:
            return "kept and logged";
        case Presence::Fallback:
            return text(field.szFallback) + " and logged";
        case Presence::Required:
            return "refused";
        case Presence::Zeroed:
            break;
    }
    return "zero";
}

bool nests(const RecordDescriptor& outer, const RecordDescriptor& inner) {
    return std::any_of(outer.begin(), outer.end(), [&](const FieldDescriptor& field) {
        return field.nested != nullptr && &field.nested() == &inner;
    });
}

// The commands with this record, or a list of it, among those records of their bodies.
Json commandsWith(const RecordDescriptor& record,
                  std::vector<std::string> CommandRecords::*bodies) {
    Json commands = Json::array();
    for (const CommandRecords& row : commandRecords()) {
        const std::vector<std::string>& vecNames = row.*bodies;
        if (std::any_of(vecNames.begin(), vecNames.end(), [&](const std::string& strName) {
                return strName == record.szClass || strName == "list " + text(record.szClass);
            })) {
            commands.push_back(std::to_string(row.nRequestId));
        }
    }
    return commands;
}

Json describe(const RecordDescriptor& record) {
    Json fields = Json::array();
    for (const FieldDescriptor& field : record) {
        fields.push_back({{"name", field.szTag},
                          {"type", typeOf(field)},
                          {"default", text(field.szDefault)},
                          {"absent", absenceOf(field)}});
    }
    Json nestedIn = Json::array();
    for (const RecordDescriptor* pOther : recordDescriptors()) {
        if (nests(*pOther, record)) {
            nestedIn.push_back(pOther->szClass);
        }
    }
    return {{"record", record.szClass},
            {"id", record.nDomainId},
            {"family", record.szFamily},
            {"element", text(record.szName)},
            {"list", text(record.szList)},
            {"entry", text(record.szEntry)},
            {"base", record.base != nullptr ? record.base().szClass : ""},
            {"fields", fields},
            {"nestedIn", nestedIn},
            {"carriedBy", commandsWith(record, &CommandRecords::vecCarries)},
            {"answers", commandsWith(record, &CommandRecords::vecAnswers)}};
}

std::string joined(const Json& names) {
    std::string strNames;
    for (const Json& name : names) {
        strNames += (strNames.empty() ? "" : ", ") + name.get<std::string>();
    }
    return strNames;
}

std::string formatRecord(const Json& record) {
    std::vector<std::vector<std::string>> vecFacts;
    for (const char* szFact : {"id", "family", "element", "list", "entry", "base"}) {
        const Json& fact = record.at(szFact);
        if (fact != "" && fact != 0) {
            vecFacts.push_back({szFact, fact.is_string() ? fact.get<std::string>() : fact.dump()});
        }
    }
    const std::pair<const char*, const char*> lists[] = {
        {"nestedIn", "nested in"}, {"carriedBy", "carried by"}, {"answers", "answers"}};
    for (const auto& [szList, szTitle] : lists) {
        if (!record.at(szList).empty()) {
            vecFacts.push_back({szTitle, joined(record.at(szList))});
        }
    }
    std::vector<std::vector<std::string>> vecFields = {{"FIELD", "TYPE", "DEFAULT", "IF ABSENT"}};
    for (const Json& field : record.at("fields")) {
        vecFields.push_back(
            {field.at("name").get<std::string>(), field.at("type").get<std::string>(),
             field.at("default").get<std::string>(), field.at("absent").get<std::string>()});
    }
    return fmt::format("{}\n{}\n{}", record.at("record").get<std::string>(),
                       formatTable(vecFacts, 2), formatTable(vecFields, 2));
}

bool isNamed(const RecordDescriptor& record, const std::string& strName) {
    return strName == record.szClass || strName == text(record.szName) ||
           strName == text(record.szList) ||
           (record.nDomainId != 0 && strName == std::to_string(record.nDomainId));
}

// What CommandDescriptor::nOperation says.
constexpr std::array<const char*, 5> OperationNames = {"", "write", "read", "other", "action"};

Json describe(const CommandDescriptor& command) {
    Json json = {{"command", command.nRequestId},
                 {"reply", command.nResponseId},
                 {"group", command.nParamGroup},
                 {"operation", OperationNames.at(command.nOperation)}};
    for (const CommandRecords& row : commandRecords()) {
        if (row.nRequestId == command.nRequestId) {
            json["carries"] = row.vecCarries;
            json["answers"] = row.vecAnswers;
        }
    }
    return json;
}

std::string formatCommand(const Json& command) {
    std::vector<std::vector<std::string>> vecFacts;
    for (const auto& [strFact, fact] : command.items()) {
        vecFacts.push_back({strFact, fact.is_array()    ? joined(fact)
                                     : fact.is_string() ? fact.get<std::string>()
                                                        : fact.dump()});
    }
    return formatTable(vecFacts, 0);
}

const CommandDescriptor* findNamedCommand(const std::string& strName) {
    for (const CommandDescriptor& command : commandCatalogue()) {
        if (strName == std::to_string(command.nRequestId)) {
            return &command;
        }
    }
    return nullptr;
}

void listRecords(Format nFormat, Output& output) {
    std::vector<std::vector<std::string>> vecRows;
    for (const RecordDescriptor* pRecord : recordDescriptors()) {
        if (nFormat == Format::JsonLines) {
            output.jsonLine({{"record", pRecord->szClass},
                             {"id", pRecord->nDomainId},
                             {"family", pRecord->szFamily}});
        }
        vecRows.push_back(
            {pRecord->szClass, std::to_string(pRecord->nDomainId), pRecord->szFamily});
    }
    if (nFormat == Format::Table) {
        output.text(formatTable(vecRows, 0));
    }
}

}  // namespace

int runVocabulary(const CommandLine& line, Output& output) {
    const Format nFormat = line.format.value_or(Format::Table);
    if (line.strName.empty()) {
        listRecords(nFormat, output);
        return ExitCode::Success;
    }
    bool bFound = false;
    const auto print = [&](const Json& json, std::string (*format)(const Json&)) {
        bFound = true;
        if (nFormat == Format::JsonLines) {
            output.jsonLine(json);
        } else {
            output.text(format(json));
        }
    };
    for (const RecordDescriptor* pRecord : recordDescriptors()) {
        if (isNamed(*pRecord, line.strName)) {
            print(describe(*pRecord), formatRecord);
        }
    }
    if (const CommandDescriptor* pCommand = findNamedCommand(line.strName)) {
        print(describe(*pCommand), formatCommand);
    }
    if (!bFound) {
        throw UsageError("no record or command '" + line.strName +
                         "'; `fleetctl vocabulary` prints the records");
    }
    return ExitCode::Success;
}
