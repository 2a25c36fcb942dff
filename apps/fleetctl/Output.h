// Output: the only writer of fleetctl's standard output.
//
// In JSON each result is one object in one line. As a table, values are laid out for people, and
// failures go to standard error.
#pragma once

#include <cstdio>
#include <string>

#include "RecordJson.h"

enum class Format { JsonLines, Table };

class Output {
public:
    // pStream stays the caller's; null swallows everything and makes finish() fail.
    Output(std::FILE* pStream, Format nFormat) : m_pStream(pStream), m_nFormat(nFormat) {}

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
    bool m_bFailed = false;
};

// Rows of cells in columns, each as wide as its widest cell, behind an indent.
std::string formatTable(const std::vector<std::vector<std::string>>& vecRows, int nIndent);
