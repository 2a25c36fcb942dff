// Follows the parser through a text without building anything.
#include "domainxml/XmlBounds.h"

#include <strings.h>

#include <cctype>
#include <cstring>
#include <string_view>

namespace {

constexpr int MaxDepth = 64;
constexpr int MaxNodes = 262144;
constexpr int MaxAttributes = 512;

bool isBlank(char c) noexcept {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool startsName(char c) noexcept {
    const auto nByte = static_cast<unsigned char>(c);
    return nByte >= 127 || c == '_' || std::isalpha(nByte) != 0;
}

bool isInName(char c) noexcept {
    return startsName(c) || std::isdigit(static_cast<unsigned char>(c)) != 0 ||
           (c != '\0' && std::strchr("-.:", c) != nullptr);
}

// The steps that read something return false where the parser gives the whole text up.
class Reader {
public:
    Reader(const char* szText, int nMostBelowRoot) noexcept
        : m_szAt(szText), m_szEnd(szText + std::strlen(szText)), m_nLeftBelowRoot(nMostBelowRoot) {}

    // A document ends at its end or at the first text outside of elements; whatever follows that
    // is not looked at.
    bool readDocument() noexcept {
        while (findMarkup()) {
            if (!readMarkup() || m_nNodes > MaxNodes) {
                return false;
            }
        }
        return m_nDepth == 0;
    }

private:
    bool startsWith(const char* szHead) const noexcept {
        return std::strncmp(m_szAt, szHead, std::strlen(szHead)) == 0;
    }

    // Heads of a declaration count in any case.
    bool startsWithWord(const char* szHead) const noexcept {
        return ::strncasecmp(m_szAt, szHead, std::strlen(szHead)) == 0;
    }

    void skipPast(const char* szMark) noexcept {
        const std::string_view rest(m_szAt, static_cast<std::size_t>(m_szEnd - m_szAt));
        const auto nFound = rest.find(szMark);
        m_szAt = nFound == std::string_view::npos ? m_szEnd : m_szAt + nFound + std::strlen(szMark);
    }

    // False at a byte-order mark, which is a blank to the parser in UTF-8, and the head of a word
    // in any other encoding.
    bool skipBlanks() noexcept {
        while (isBlank(*m_szAt)) {
            ++m_szAt;
        }
        return !startsWith("\xEF\xBB\xBF") && !startsWith("\xEF\xBF\xBE") &&
               !startsWith("\xEF\xBF\xBF");
    }

    // To the next "<"; false at the end. Behind a mark outside of elements there may be more.
    bool findMarkup() noexcept {
        if (m_nDepth > 0) {
            return readText('<');
        }
        while (!skipBlanks()) {
            m_szAt += 3;
        }
        return *m_szAt == '<';
    }

    // To a character that ends a text, which has to come.
    bool readText(char cEnd) noexcept {
        while (*m_szAt != cEnd) {
            if (*m_szAt == '\0' || !readCharacter()) {
                return false;
            }
        }
        return true;
    }

    // One character or numeric reference.
    bool readCharacter() noexcept {
        if (!startsWith("&#")) {
            ++m_szAt;
            return true;
        }
        const bool bHex = m_szAt[2] == 'x';
        const char* szDigits = m_szAt + (bHex ? 3 : 2);
        const std::size_t nDigits =
            std::strspn(szDigits, bHex ? "0123456789abcdefABCDEF" : "0123456789");
        m_szAt = szDigits + nDigits + 1;
        return nDigits > 0 && szDigits[nDigits] == ';';
    }

    bool readMarkup() noexcept {
        m_nNodes += m_szAt[1] == '/' ? 0 : 1;
        if (startsWithWord("<?xml")) {
            return readDeclaration();
        }
        if (startsWith("<!--")) {
            m_szAt += 4;
            skipPast("-->");
        } else if (startsWith("<![CDATA[")) {
            skipPast("]]>");
        } else if (startsName(m_szAt[1])) {
            return readTag();
        } else {
            // An end tag outside of elements is nothing to the parser.
            m_nDepth -= m_nDepth > 0 && m_szAt[1] == '/' ? 1 : 0;
            skipPast(">");
        }
        return true;
    }

    bool readDeclaration() noexcept {
        m_szAt += std::strlen("<?xml");
        while (*m_szAt != '\0' && *m_szAt != '>') {
            if (!skipBlanks()) {
                return false;
            }
            if (startsWithWord("version") || startsWithWord("encoding") ||
                startsWithWord("standalone")) {
                if (!readAttribute()) {
                    return false;
                }
                continue;
            }
            while (*m_szAt != '\0' && *m_szAt != '>' && !isBlank(*m_szAt)) {
                ++m_szAt;
            }
        }
        return *m_szAt++ == '>';
    }

    bool readTag() noexcept {
        ++m_szAt;
        if (m_nDepth == 1 && m_nLeftBelowRoot-- == 0) {
            return false;
        }
        if (!skipBlanks() || !readName()) {
            return false;
        }
        for (int nAttributes = 0; skipBlanks(); ++nAttributes) {
            if (*m_szAt == '>') {
                ++m_szAt;
                return ++m_nDepth <= MaxDepth;
            }
            if (startsWith("/>")) {
                m_szAt += 2;
                return m_nDepth < MaxDepth;
            }
            if (nAttributes == MaxAttributes || !readAttribute()) {
                return false;
            }
            ++m_nNodes;
        }
        return false;
    }

    bool readName() noexcept {
        if (!startsName(*m_szAt)) {
            return false;
        }
        while (isInName(*m_szAt)) {
            ++m_szAt;
        }
        return true;
    }

    bool readAttribute() noexcept {
        if (!readName() || !skipBlanks() || *m_szAt++ != '=' || !skipBlanks()) {
            return false;
        }
        return *m_szAt == '"' || *m_szAt == '\'' ? readQuoted() : readBare();
    }

    bool readQuoted() noexcept {
        const char cQuote = *m_szAt++;
        return readText(cQuote) && *m_szAt++ == cQuote;
    }

    // A value without quotes, which must not hold any.
    bool readBare() noexcept {
        while (!isBlank(*m_szAt) && std::strchr("/>\"'", *m_szAt) == nullptr) {
            ++m_szAt;
        }
        return *m_szAt != '\0' && *m_szAt != '"' && *m_szAt != '\'';
    }

    const char* m_szAt;
    const char* const m_szEnd;
    int m_nDepth = 0;
    int m_nNodes = 0;
    int m_nLeftBelowRoot;
};

bool isContinuation(unsigned char nByte) noexcept {
    return nByte >= 0x80 && nByte <= 0xBF;
}

// The length of the character that begins here, 0 if it is none.
int characterLength(const unsigned char* pBytes) noexcept {
    const unsigned char nLead = pBytes[0];
    const unsigned char nSecond = nLead < 0x80 ? 0 : pBytes[1];
    if (nLead < 0x80) {
        return 1;
    }
    if (nLead < 0xC2 || nLead > 0xF4 || !isContinuation(nSecond)) {
        return 0;
    }
    if (nLead < 0xE0) {
        return 2;
    }
    if (!isContinuation(pBytes[2])) {
        return 0;
    }
    if (nLead < 0xF0) {
        const bool bOverlong = nLead == 0xE0 && nSecond < 0xA0;
        const bool bSurrogate = nLead == 0xED && nSecond > 0x9F;
        return bOverlong || bSurrogate ? 0 : 3;
    }
    const bool bOutOfRange = (nLead == 0xF0 && nSecond < 0x90) || (nLead == 0xF4 && nSecond > 0x8F);
    return bOutOfRange || !isContinuation(pBytes[3]) ? 0 : 4;
}

}  // namespace

bool isWithinXmlBounds(const char* szText, int nMostBelowRoot) noexcept {
    return Reader(szText, nMostBelowRoot).readDocument();
}

bool isUtf8(const char* szText) noexcept {
    const auto* pBytes = reinterpret_cast<const unsigned char*>(szText);
    while (*pBytes != 0) {
        const int nLength = characterLength(pBytes);
        if (nLength == 0) {
            return false;
        }
        pBytes += nLength;
    }
    return true;
}
