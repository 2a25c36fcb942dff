// Questions about address texts and about the addresses of this machine.
#include "Product/Technic/IPTool.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/InetAddr.h"
#include "Product/Technic/platform/NameResolution.h"

namespace {

constexpr std::string_view IPv4Characters = "0123456789.:";
constexpr std::string_view IPv6Characters = "0123456789abcdefABCDEF:";
constexpr std::size_t IPv4Segments = 4;
constexpr std::size_t MaxIPv4Segment = 3;
constexpr std::size_t MaxIPv6Piece = 4;
constexpr int MaxIPv6Pieces = 8;
constexpr long MaxIPv6Prefix = 128;
constexpr const char* IPv6Loopback = "::1";

bool consistsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

// The leading number of a text, 0 when there is none; the ends of the range when it is too large.
long leadingNumber(std::string_view text) {
    return std::strtol(std::string(text).c_str(), nullptr, 10);
}

bool isPort(std::string_view text) {
    const long nPort = leadingNumber(text);
    return nPort >= 1 && nPort <= std::numeric_limits<unsigned short>::max();
}

// Compares by characters, and only what has three of them.
bool isIPv4Segment(std::string_view segment, bool bLast) {
    if (segment.empty() || segment.size() > MaxIPv4Segment) {
        return false;
    }
    if (segment.size() < MaxIPv4Segment || segment[0] < '2') {
        return true;
    }
    if (segment[0] > '2' || segment[1] > '5') {
        return false;
    }
    return segment[1] != '5' || (segment[2] <= '5' && !(bLast && segment[2] == '5'));
}

void store(InetAddr& address, const std::string& strText, int nVersion) {
    address.setIP(strText);
    address.setIPProtoVer(nVersion);
}

// `out` has space for the text and its end.
void copyText(std::string_view text, char* out) {
    out[text.copy(out, text.size())] = '\0';
}

}  // namespace

bool IPTool::checkIPAddress(const char* text, int& version) {
    if (text == nullptr) {
        return false;
    }
    if (checkIPv4Address(text)) {
        version = 1;
        return true;
    }
    if (checkIPv6Address(text)) {
        version = 2;
        return true;
    }
    return false;
}

bool IPTool::getInetAddr(const char* text, InetAddr& out) {
    int nVersion = 0;
    if (!checkIPAddress(text, nVersion)) {
        return getIPbyHostname(text, out);
    }
    store(out, text, nVersion);
    return true;
}

bool IPTool::getIPbyHostname(const char* name, InetAddr& out) {
    const std::optional<SocketApi::HostAnswer> answer = SocketApi::lookUpHost(name);
    if (!answer) {
        return false;
    }
    out.setIP(answer->strText);
    if (answer->nIpVersion == 0) {
        return false;
    }
    out.setIPProtoVer(answer->nIpVersion);
    return true;
}

bool IPTool::enumIPList(int version) {
    m_nEntryCount = 0;
    std::vector<NetworkAdapter> vecAdapters;
    if (!listAdapters(vecAdapters)) {
        return false;
    }
    const int nWanted = version == 1 ? 1 : 2;
    for (const NetworkAdapter& adapter : vecAdapters) {
        for (const InetAddr& address : adapter.vecAddresses) {
            const std::string& strText = address.getIP();
            if (address.getIPProtoVer() != nWanted || strText == IPv6Loopback ||
                m_nEntryCount == MaxEntries) {
                continue;
            }
            copyText(std::string_view(strText).substr(0, EntrySize - 1),
                     m_szEntries[m_nEntryCount++]);
        }
    }
    return true;
}

int IPTool::getEnumIPNum() {
    return m_nEntryCount;
}

bool IPTool::getEnumIP(int index, char* out) {
    if (index < 0 || index >= m_nEntryCount || out == nullptr) {
        return false;
    }
    copyText(m_szEntries[index], out);
    return true;
}

bool IPTool::getLocalIP(int, char* out) {
    const std::optional<std::string> address = SocketApi::lookUpOwnHost();
    if (!address || out == nullptr) {
        return false;
    }
    copyText(*address, out);
    return true;
}

bool IPTool::checkIPv4Address(const char* text) {
    const std::string_view all(text);
    if (!consistsOf(all, IPv4Characters)) {
        return false;
    }
    std::size_t nEnd = 0;
    std::size_t nPos = 0;
    for (std::size_t i = 0; i < IPv4Segments; ++i) {
        const bool bLast = i + 1 == IPv4Segments;
        nEnd = std::min(all.find('.', nPos), all.size());
        const std::size_t nColon = all.find(':', nPos);
        if (bLast && nEnd == all.size() && nColon != std::string_view::npos) {
            nEnd = nColon;
            if (!isPort(all.substr(nColon + 1))) {
                return false;
            }
        }
        if (nPos >= nEnd || !isIPv4Segment(all.substr(nPos, nEnd - nPos), bLast)) {
            return false;
        }
        nPos = nEnd + 1;
    }
    return all.find('.', nEnd) == std::string_view::npos;
}

bool IPTool::checkIPv6Address(const char* text) {
    std::string_view address(text);
    const std::size_t nSlash = address.rfind('/');
    if (nSlash != std::string_view::npos) {
        const long nPrefix = leadingNumber(address.substr(nSlash + 1));
        if (nPrefix < 0 || nPrefix > MaxIPv6Prefix) {
            return false;
        }
        address = address.substr(0, nSlash);
    }
    if (!consistsOf(address, IPv6Characters)) {
        return false;
    }
    int nPieces = 0;
    while (!address.empty()) {
        const std::size_t nPiece = std::min(address.find(':'), address.size());
        if (nPiece > MaxIPv6Piece) {
            return false;
        }
        ++nPieces;
        address.remove_prefix(std::min(nPiece + 1, address.size()));
    }
    return nPieces <= MaxIPv6Pieces;
}

int IPTool::dtob(int value, char* out) {
    if (value <= 0) {
        return value < 0 ? -1 : 0;
    }
    std::string strDigits;
    for (int nRest = value; nRest > 0; nRest /= 2) {
        strDigits.push_back(nRest % 2 == 0 ? '0' : '1');
    }
    std::reverse_copy(strDigits.begin(), strDigits.end(), out);
    return static_cast<int>(strDigits.size());
}
