// Prints the entries of the vocabulary.
#include "Vocabulary.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ExitCode.h"
#include "UsageError.h"
#include "VocabularyEntry.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::span<const VocabularyEntry> entries() {
    return {vocabularyEntries, vocabularySize};
}

bool isNamed(const VocabularyEntry& entry, const std::string& strName) {
    std::istringstream names(entry.szNames);
    return std::any_of(std::istream_iterator<std::string>(names), {},
                       [&](const std::string& strOther) { return strOther == strName; });
}

std::string textOf(const Json& fact) {
    if (!fact.is_array()) {
        return fact.is_string() ? fact.get<std::string>() : fact.dump();
    }
    std::string strNames;
    for (const Json& name : fact) {
        strNames += (strNames.empty() ? "" : ", ") + textOf(name);
    }
    return strNames;
}

// "nestedIn" is "nested in".
std::string titleOf(const std::string& strKey) {
    std::string strTitle;
    for (const char cNext : strKey) {
        if (std::isupper(static_cast<unsigned char>(cNext)) != 0) {
            strTitle += ' ';
        }
        strTitle += static_cast<char>(std::tolower(static_cast<unsigned char>(cNext)));
    }
    return strTitle;
}

std::string formatFacts(const Json& entry) {
    static const std::set<std::string> LaidOutOtherwise = {"record", "fields", "example"};
    Rows vecRows;
    for (const auto& [strKey, fact] : entry.items()) {
        if (LaidOutOtherwise.count(strKey) == 0) {
            vecRows.push_back({titleOf(strKey), textOf(fact)});
        }
    }
    return formatTable(vecRows, 2);
}

// A field whose absence prints two lines takes two rows.
std::string formatFields(const Json& fields) {
    Rows vecRows = {{"FIELD", "TYPE", "DEFAULT", "WHEN ABSENT", "PRINTED THEN"}};
    for (const Json& field : fields) {
        std::vector<std::string> vecCells;
        for (const char* szCell : {"name", "type", "default", "absent"}) {
            vecCells.push_back(field.value(szCell, ""));
        }
        for (const Json& line : field.value("printed", Json::array({""}))) {
            vecCells.push_back(line.get<std::string>());
            vecRows.push_back(std::exchange(vecCells, std::vector<std::string>(4)));
        }
    }
    return formatTable(vecRows, 2);
}

std::string formatNotes(const Json& fields) {
    Rows vecRows;
    for (const Json& field : fields) {
        if (field.contains("inheritedFrom")) {
            vecRows.push_back(
                {field.at("name"), "From " + textOf(field.at("inheritedFrom")) + '.'});
        }
        for (const Json& note : field.value("notes", Json::array())) {
            vecRows.push_back({field.at("name"), note});
        }
    }
    return vecRows.empty() ? "" : '\n' + formatTable(vecRows, 2);
}

std::string formatEntry(const Json& entry) {
    if (!entry.contains("record")) {
        return formatFacts(entry);
    }
    std::string strText = textOf(entry.at("record")) + '\n' + formatFacts(entry) + '\n';
    if (entry.contains("fields")) {
        const Json& fields = entry.at("fields");
        strText += formatFields(fields) + formatNotes(fields) + '\n';
    }
    return strText + textOf(entry.at("example"));
}

void listRecords(Format nFormat, Output& output) {
    Rows vecRows;
    for (const VocabularyEntry& entry : entries()) {
        const Json json = Json::parse(entry.szJson);
        if (!json.contains("record")) {
            continue;
        }
        if (nFormat == Format::JsonLines) {
            Json line;
            for (const char* szKey : {"record", "id", "family", "about"}) {
                if (json.contains(szKey)) {
                    line[szKey] = json.at(szKey);
                }
            }
            output.jsonLine(line);
        }
        vecRows.push_back({json.at("record"), json.contains("id") ? textOf(json.at("id")) : "",
                           json.at("family")});
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
    for (const VocabularyEntry& entry : entries()) {
        if (isNamed(entry, line.strName)) {
            output.text(nFormat == Format::JsonLines
                            ? std::string(entry.szJson) + '\n'
                            : (bFound ? "\n" : "") + formatEntry(Json::parse(entry.szJson)));
            bFound = true;
        }
    }
    if (!bFound) {
        throw UsageError("no record or command '" + line.strName +
                         "'; `fleetctl vocabulary` prints the records");
    }
    return ExitCode::Success;
}
