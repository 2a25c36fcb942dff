// Lays results out, as lines of JSON or as tables.
#include "Output.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <string_view>

#include "VisibleText.h"

namespace {

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

TableRows columnsOf(const Json& list) {
    TableRows vecRows(1);
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
void addPaths(const Json& json, const std::string& strPath, TableRows& vecRows) {
    if (!json.is_structured() || json.empty()) {
        vecRows.push_back({strPath, cellOf(json)});
        return;
    }
    for (const auto& [strStep, value] : json.items()) {
        addPaths(value, pathBelow(strPath, strStep), vecRows);
    }
}

bool isInsideCharacter(char cByte) {
    return (cByte & 0xC0) == 0x80;
}

// Characters, not bytes.
std::size_t widthOf(std::string_view text) {
    return text.size() -
           static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInsideCharacter));
}

constexpr std::size_t ValueIndent = 2;
constexpr std::size_t Gap = 2;          // between two columns
constexpr std::size_t LeastWidth = 20;  // of a column that is wrapped

std::vector<std::size_t> widthsOf(const TableRows& vecRows) {
    std::vector<std::size_t> vecWidths;
    for (const auto& vecRow : vecRows) {
        vecWidths.resize(std::max(vecWidths.size(), vecRow.size()));
        for (std::size_t i = 0; i < vecRow.size(); ++i) {
            vecWidths[i] = std::max(vecWidths[i], widthOf(visibleText(vecRow[i])));
        }
    }
    return vecWidths;
}

bool fitsTable(const TableRows& vecRows, std::size_t nIndent, std::size_t nWidth) {
    std::vector<std::size_t> vecWidths = widthsOf(vecRows);
    vecWidths.back() = std::min(vecWidths.back(), LeastWidth);
    return std::accumulate(vecWidths.begin(), vecWidths.end(),
                           nIndent + Gap * (vecWidths.size() - 1)) <= nWidth;
}

TableRows rowsOf(const Json& value, std::size_t nWidth) {
    if (isColumnar(value)) {
        TableRows vecColumns = columnsOf(value);
        if (fitsTable(vecColumns, ValueIndent, nWidth)) {
            return vecColumns;
        }
    }
    TableRows vecRows;
    addPaths(value, "", vecRows);
    return vecRows;
}

// Takes a line of at most so many characters off the front of a text.
std::string_view takeLine(std::string_view& text, std::size_t nWidth) {
    std::size_t nEnd = 0;
    std::size_t nBlank = 0;
    for (std::size_t nCount = 0; nEnd < text.size(); ++nEnd) {
        if (!isInsideCharacter(text[nEnd]) && nCount++ == nWidth) {
            break;
        }
        nBlank = text[nEnd] == ' ' ? nEnd : nBlank;
    }
    if (nEnd < text.size() && text[nEnd] != ' ' && nBlank > 0) {
        nEnd = nBlank;
    }
    const std::string_view line = text.substr(0, nEnd);
    text.remove_prefix(std::min(text.find_first_not_of(' ', nEnd), text.size()));
    return line;
}

}  // namespace

std::string formatTable(const TableRows& vecRows, std::size_t nIndent, std::size_t nWidth) {
    const std::vector<std::size_t> vecWidths = widthsOf(vecRows);
    std::string strTable;
    for (const auto& vecRow : vecRows) {
        std::string strLine(nIndent, ' ');
        std::size_t nStart = nIndent;
        for (std::size_t i = 0; i + 1 < vecRow.size(); ++i) {
            const std::string strCell = visibleText(vecRow[i]);
            strLine += strCell + std::string(vecWidths[i] + Gap - widthOf(strCell), ' ');
            nStart += vecWidths[i] + Gap;
        }
        const std::string strLast = vecRow.empty() ? "" : visibleText(vecRow.back());
        std::string_view rest = strLast;
        const std::size_t nRoom = nWidth > nStart + LeastWidth ? nWidth - nStart : LeastWidth;
        for (strLine += takeLine(rest, nRoom); !rest.empty();) {
            strLine += '\n' + std::string(nStart, ' ');
            strLine += takeLine(rest, nRoom);
        }
        strLine.erase(strLine.find_last_not_of(' ') + 1);
        strTable += strLine + '\n';
    }
    return strTable;
}

std::string formatHeadedTable(const TableRows& vecRows, std::size_t nIndent, std::size_t nWidth) {
    if (fitsTable(vecRows, nIndent, nWidth)) {
        return formatTable(vecRows, nIndent, nWidth);
    }
    std::string strText;
    for (std::size_t nRow = 1; nRow < vecRows.size(); ++nRow) {
        TableRows vecLines;
        for (std::size_t i = 0; i < vecRows[nRow].size(); ++i) {
            if (!vecRows[nRow][i].empty()) {
                vecLines.push_back({vecRows[0][i], vecRows[nRow][i]});
            }
        }
        strText += (nRow > 1 && !vecRows[nRow].front().empty() ? "\n" : "") +
                   formatTable(vecLines, nIndent, nWidth);
    }
    return strText;
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
        text(fmt::format("{} {}\n{}", strDevice, strName,
                         formatTable(rowsOf(value, m_nWidth), ValueIndent, m_nWidth)));
    }
}

void Output::failure(const std::string& strDevice, const std::string& strName, int nCode,
                     const std::string& strError) {
    if (m_nFormat == Format::JsonLines) {
        jsonLine({{"device", strDevice}, {"name", strName}, {"code", nCode}, {"error", strError}});
    } else {
        fmt::print(stderr, "fleetctl: {} {}: {} (code {})\n", strDevice, strName,
                   visibleText(strError), nCode);
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
