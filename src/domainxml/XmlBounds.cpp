// The bounds of an XML text that the recursive parser is given.
#include "domainxml/XmlBounds.h"

#include <cctype>
#include <cstring>

namespace {

constexpr int MaxDepth = 1000;
constexpr int MaxAttributes = 512;

bool startsWith(const char* szText, const char* szHead) noexcept {
    return std::strncmp(szText, szHead, std::strlen(szHead)) == 0;
}

// Behind the next szMark, or at the end of the text.
const char* skipPast(const char* szText, const char* szMark) noexcept {
    const char* szFound = std::strstr(szText, szMark);
    return szFound == nullptr ? szText + std::strlen(szText) : szFound + std::strlen(szMark);
}

bool startsElement(const char* szName) noexcept {
    const auto nByte = static_cast<unsigned char>(*szName);
    return nByte >= 127 || nByte == '_' || std::isalpha(nByte) != 0;
}

const char* skipBlanks(const char* szText) noexcept {
    while (std::isspace(static_cast<unsigned char>(*szText)) != 0) {
        ++szText;
    }
    return szText;
}

// The value behind an equals sign: to its closing quote, or nowhere if it has no quotes.
const char* skipValue(const char* szText) noexcept {
    szText = skipBlanks(szText);
    if (*szText != '"' && *szText != '\'') {
        return szText;
    }
    const char szQuote[] = {*szText, '\0'};
    return skipPast(szText + 1, szQuote);
}

struct Tag {
    const char* szEnd;  // behind the ">"
    bool bOpen;         // children may follow
    bool bWithinBounds;
};

Tag readTag(const char* szText) noexcept {
    int nAttributes = 0;
    while (*szText != '\0' && *szText != '>') {
        if (startsWith(szText, "/>")) {
            return {szText + 2, false, true};
        }
        if (*szText++ == '=') {
            if (++nAttributes > MaxAttributes) {
                return {szText, false, false};
            }
            szText = skipValue(szText);
        }
    }
    return {*szText == '\0' ? szText : szText + 1, true, true};
}

}  // namespace

bool isWithinXmlBounds(const char* szText) noexcept {
    int nDepth = 0;
    while ((szText = std::strchr(szText, '<')) != nullptr) {
        if (startsWith(szText, "<!--")) {
            szText = skipPast(szText + 4, "-->");
        } else if (startsWith(szText, "<![CDATA[")) {
            szText = skipPast(szText + 9, "]]>");
        } else if (szText[1] == '/') {
            --nDepth;
            szText = skipPast(szText, ">");
        } else if (!startsElement(szText + 1)) {
            szText = skipPast(szText, ">");
        } else {
            const Tag tag = readTag(szText + 1);
            if (!tag.bWithinBounds || (tag.bOpen && ++nDepth > MaxDepth)) {
                return false;
            }
            szText = tag.szEnd;
        }
    }
    return true;
}
