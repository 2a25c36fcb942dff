// Output: the only writer of fleetctl's standard output.
//
// In JSON each result is one object in one line. As a table, values are laid out for people, and
// failures go to standard error.
#pragma once

#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "RecordJson.h"

enum class Format { JsonLines, Table };

// Widths of tables: none to keep to, and that of a help page.
constexpr std::size_t AnyWidth = std::numeric_limits<std::size_t>::max();
constexpr std::size_t PageWidth = 80;

class Output {
public:
    // pStream stays the caller's; null swallows everything and makes finish() fail. Tables keep to
    // the width, in characters.
    Output(std::FILE* pStream, Format nFormat, std::size_t nWidth)
        : m_pStream(pStream), m_nFormat(nFormat), m_nWidth(nWidth) {}

    Format getFormat() const noexcept { return m_nFormat; }
    std::size_t getWidth() const noexcept { return m_nWidth; }

    // A null value is left out.
    void success(const std::string& strDevice, const std::string& strName, const Json& value);
    void failure(const std::string& strDevice, const std::string& strName, int nCode,
                 const std::string& strError);

    // One object in one line, whatever the format.
    void jsonLine(const Json& json);
    void text(const std::string& strText);

    // Whether everything has been written.
    bool finish();

private:
    std::FILE* m_pStream;
    Format m_nFormat;
    std::size_t m_nWidth;
    bool m_bFailed = false;
};

using TableRows = std::vector<std::vector<std::string>>;

// TableRows of cells in columns, each as wide as its widest cell, behind an indent. The last column
// is wrapped to the width, between words where there are any.
std::string formatTable(const TableRows& vecRows, std::size_t nIndent, std::size_t nWidth);

// The same with headings in the first row. When not even a narrow last column fits, each row
// becomes a paragraph instead, with a line for each cell that is not empty.
std::string formatHeadedTable(const TableRows& vecRows, std::size_t nIndent, std::size_t nWidth);
