// Several numbers in one attribute, by a pattern and a separator.
#include "domainxml/JoinedText.h"

#include <cctype>
#include <cstdlib>

namespace JoinedText {

namespace {

bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isNumberMark(const char* szPattern) {
    return szPattern[0] == '%' && szPattern[1] == 'd';
}

}  // namespace

std::string format(const char* szPattern, const std::vector<int>& vecNumbers) {
    std::string strText;
    std::size_t nNext = 0;
    while (*szPattern != '\0') {
        if (isNumberMark(szPattern)) {
            strText += std::to_string(vecNumbers.at(nNext++));
            szPattern += 2;
        } else {
            strText += *szPattern++;
        }
    }
    return strText;
}

std::vector<int> scan(const char* szPattern, const std::string& strPiece) {
    std::vector<int> vecNumbers;
    const char* szText = strPiece.c_str();
    for (; *szPattern != '\0'; ++szPattern) {
        if (isNumberMark(szPattern)) {
            char* szEnd = nullptr;
            const long nNumber = std::strtol(szText, &szEnd, 10);
            if (szEnd == szText) {
                break;
            }
            vecNumbers.push_back(static_cast<int>(nNumber));
            szText = szEnd;
            ++szPattern;
        } else if (isBlank(*szPattern)) {
            // A blank in a pattern stands for any number of blanks, none included.
            while (isBlank(*szText)) {
                ++szText;
            }
        } else if (*szText++ != *szPattern) {
            break;
        }
    }
    return vecNumbers;
}

std::vector<std::string> split(const std::string& strText, const std::string& strSeparator) {
    std::vector<std::string> vecPieces;
    if (strText.empty()) {
        return vecPieces;
    }
    std::size_t nFrom = 0;
    for (std::size_t nAt; (nAt = strText.find(strSeparator, nFrom)) != std::string::npos;) {
        vecPieces.push_back(strText.substr(nFrom, nAt - nFrom));
        nFrom = nAt + strSeparator.size();
    }
    vecPieces.push_back(strText.substr(nFrom));
    return vecPieces;
}

std::string join(const std::vector<std::string>& vecPieces, const std::string& strSeparator) {
    std::string strText;
    for (const std::string& strPiece : vecPieces) {
        strText += (strText.empty() ? "" : strSeparator) + strPiece;
    }
    return strText;
}

}  // namespace JoinedText
