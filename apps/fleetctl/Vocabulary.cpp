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
#include "Suggestion.h"
#include "UsageError.h"
#include "VocabularyEntry.h"

namespace {

constexpr std::size_t Indent = 2;

std::span<const VocabularyEntry> entries() {
    return {vocabularyEntries, vocabularySize};
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

std::string formatFacts(const Json& entry, std::size_t nWidth) {
    static const std::set<std::string> LaidOutOtherwise = {"record", "fields", "example"};
    TableRows vecRows;
    for (const auto& [strKey, fact] : entry.items()) {
        if (LaidOutOtherwise.count(strKey) == 0) {
            vecRows.push_back({titleOf(strKey), textOf(fact)});
        }
    }
    return formatTable(vecRows, Indent, nWidth);
}

// A field whose absence prints two lines takes two rows.
std::string formatFields(const Json& fields, std::size_t nWidth) {
    TableRows vecRows = {{"FIELD", "TYPE", "DEFAULT", "WHEN ABSENT", "PRINTED THEN"}};
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
    return formatHeadedTable(vecRows, Indent, nWidth);
}

std::string formatMeanings(const Json& fields, std::size_t nWidth) {
    TableRows vecRows;
    for (const Json& field : fields) {
        if (field.contains("meaning")) {
            vecRows.push_back({field.at("name"), field.at("meaning")});
        }
    }
    return vecRows.empty() ? "" : formatTable(vecRows, Indent, nWidth) + '\n';
}

std::string formatNotes(const Json& fields, std::size_t nWidth) {
    TableRows vecRows;
    for (const Json& field : fields) {
        if (field.contains("inheritedFrom")) {
            vecRows.push_back(
                {field.at("name"), "From " + textOf(field.at("inheritedFrom")) + '.'});
        }
        for (const Json& note : field.value("notes", Json::array())) {
            vecRows.push_back({field.at("name"), note});
        }
    }
    return vecRows.empty() ? "" : '\n' + formatTable(vecRows, Indent, nWidth);
}

std::string formatEntry(const Json& entry, std::size_t nWidth) {
    if (!entry.contains("record")) {
        return formatFacts(entry, nWidth);
    }
    std::string strText = textOf(entry.at("record")) + '\n' + formatFacts(entry, nWidth) + '\n';
    if (entry.contains("fields")) {
        const Json& fields = entry.at("fields");
        strText += formatMeanings(fields, nWidth) + formatFields(fields, nWidth) +
                   formatNotes(fields, nWidth) + '\n';
    }
    return strText + textOf(entry.at("example"));
}

void listRecords(Output& output) {
    TableRows vecRows;
    for (const VocabularyEntry& entry : entries()) {
        const Json json = Json::parse(entry.szJson);
        if (!json.contains("record")) {
            continue;
        }
        if (output.getFormat() == Format::JsonLines) {
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
    if (output.getFormat() == Format::Table) {
        output.text(formatTable(vecRows, 0, output.getWidth()));
    }
}

std::vector<Json> findEntries(const std::string& strName) {
    std::vector<Json> vecFound;
    std::vector<std::string> vecNames;
    for (const VocabularyEntry& entry : entries()) {
        std::istringstream names(entry.szNames);
        const std::vector<std::string> vecOwn(std::istream_iterator<std::string>(names), {});
        if (std::find(vecOwn.begin(), vecOwn.end(), strName) != vecOwn.end()) {
            vecFound.push_back(Json::parse(entry.szJson));
        }
        vecNames.insert(vecNames.end(), vecOwn.begin(), vecOwn.end());
    }
    if (vecFound.empty()) {
        const std::string strNearest = nearestWord(strName, vecNames);
        throw UsageError("no record or command '" + strName + "'; " +
                         (strNearest.empty() ? "`fleetctl vocabulary` prints the records"
                                             : "did you mean '" + strNearest + "'?"));
    }
    return vecFound;
}

}  // namespace

int runVocabulary(const CommandLine& line, Output& output) {
    if (line.strName.empty()) {
        listRecords(output);
        return ExitCode::Success;
    }
    bool bFirst = true;
    for (const Json& entry : findEntries(line.strName)) {
        if (output.getFormat() == Format::JsonLines) {
            output.jsonLine(entry);
        } else {
            output.text((bFirst ? "" : "\n") + formatEntry(entry, output.getWidth()));
        }
        bFirst = false;
    }
    return ExitCode::Success;
}
