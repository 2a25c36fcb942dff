// Lays results out, as lines of JSON or as tables.
#include "Output.h"

#include <fmt/format.h>

#include <algorithm>

#include "VisibleText.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

bool isFlatRecord(const Json& json) {
    return json.is_object() && !json.empty() &&
           std::none_of(json.begin(), json.end(),
                        [](const Json& field) { return field.is_structured(); });
}

// Lists of plain records have a column for each field.
bool isColumnar(const Json& json) {
    return json.is_array() && !json.empty() && std::all_of(json.begin(), json.end(), isFlatRecord);
}

std::string cellOf(const Json& json) {
    return json.is_string() ? json.get<std::string>() : jsonText(json);
}

Rows columnsOf(const Json& list) {
    Rows vecRows(1);
    for (const auto& [strField, value] : list.front().items()) {
        vecRows.front().push_back(strField);
    }
    for (const Json& record : list) {
        auto& vecRow = vecRows.emplace_back();
        for (const Json& field : record) {
            vecRow.push_back(cellOf(field));
        }
    }
    return vecRows;
}

// A row for each field, by its dotted path: the same path as for `set`.
void addPaths(const Json& json, const std::string& strPath, Rows& vecRows) {
    if (!json.is_structured() || json.empty()) {
        vecRows.push_back({strPath, cellOf(json)});
        return;
    }
    for (const auto& [strStep, value] : json.items()) {
        addPaths(value, pathBelow(strPath, strStep), vecRows);
    }
}

Rows rowsOf(const Json& value) {
    if (isColumnar(value)) {
        return columnsOf(value);
    }
    Rows vecRows;
    addPaths(value, "", vecRows);
    return vecRows;
}

// Characters, not bytes.
std::size_t widthOf(const std::string& strText) {
    return static_cast<std::size_t>(std::count_if(
        strText.begin(), strText.end(), [](char cNext) { return (cNext & 0xC0) != 0x80; }));
}

}  // namespace

std::string formatTable(const std::vector<std::vector<std::string>>& vecRows, int nIndent) {
    std::vector<std::size_t> vecWidths;
    for (const auto& vecRow : vecRows) {
        vecWidths.resize(std::max(vecWidths.size(), vecRow.size()));
        for (std::size_t i = 0; i < vecRow.size(); ++i) {
            vecWidths[i] = std::max(vecWidths[i], widthOf(visibleText(vecRow[i])));
        }
    }
    std::string strTable;
    for (const auto& vecRow : vecRows) {
        std::string strLine(static_cast<std::size_t>(nIndent), ' ');
        for (std::size_t i = 0; i < vecRow.size(); ++i) {
            strLine += visibleText(vecRow[i]);
            strLine.append(vecWidths[i] - widthOf(visibleText(vecRow[i])) + 2, ' ');
        }
        strLine.erase(strLine.find_last_not_of(' ') + 1);
        strTable += strLine + '\n';
    }
    return strTable;
}

void Output::success(const std::string& strDevice, const std::string& strName, const Json& value) {
    if (m_nFormat == Format::JsonLines) {
        Json line{{"device", strDevice}, {"name", strName}, {"code", 0}};
        if (!value.is_null()) {
            line["value"] = value;
        }
        jsonLine(line);
    } else if (value.is_null()) {
        text(fmt::format("{} {}: done\n", strDevice, strName));
    } else {
        text(fmt::format("{} {}\n{}", strDevice, strName, formatTable(rowsOf(value), 2)));
    }
}

void Output::failure(const std::string& strDevice, const std::string& strName, int nCode,
                     const std::string& strError) {
    if (m_nFormat == Format::JsonLines) {
        jsonLine({{"device", strDevice}, {"name", strName}, {"code", nCode}, {"error", strError}});
    } else {
        fmt::print(stderr, "fleetctl: {} {}: {} (code {})\n", strDevice, strName, strError, nCode);
    }
}

void Output::jsonLine(const Json& json) {
    text(jsonText(json) + '\n');
}

// Each result is out before the next one is asked for.
void Output::text(const std::string& strText) {
    m_bFailed = m_bFailed || m_pStream == nullptr ||
                std::fwrite(strText.data(), 1, strText.size(), m_pStream) != strText.size() ||
                std::fflush(m_pStream) != 0;
}

bool Output::finish() {
    return !m_bFailed;
}
