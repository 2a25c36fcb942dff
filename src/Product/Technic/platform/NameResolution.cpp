// Names and addresses, by the resolver of the C library.
#include "Product/Technic/platform/NameResolution.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace SocketApi {
namespace {

struct AnswerDeleter {
    void operator()(addrinfo* pAnswer) const noexcept { ::freeaddrinfo(pAnswer); }
};
using Answer = std::unique_ptr<addrinfo, AnswerDeleter>;

// Null, with `errno` set, when there is no answer.
Answer ask(const char* pszHost, const char* pszService, const addrinfo* pHints) noexcept {
    addrinfo* pAnswer = nullptr;
    const int nResult = ::getaddrinfo(pszHost, pszService, pHints, &pAnswer);
    if (nResult == 0) {
        return Answer(pAnswer);
    }
    if (nResult != EAI_SYSTEM || errno == 0) {
        errno = EADDRNOTAVAIL;
    }
    return nullptr;
}

std::string dottedText(const in_addr& address) {
    std::array<char, INET_ADDRSTRLEN> arrText{};
    ::inet_ntop(AF_INET, &address, arrText.data(), arrText.size());
    return arrText.data();
}

std::string dottedTextBehindPort(const sockaddr& address) {
    in_addr bytes{};
    std::memcpy(&bytes, reinterpret_cast<const char*>(&address) + offsetof(sockaddr_in, sin_addr),
                sizeof(bytes));
    return dottedText(bytes);
}

int ipVersionOf(int nFamily) noexcept {
    return nFamily == AF_INET6 ? 2 : nFamily == AF_INET ? 1 : 0;
}

}  // namespace

int resolve(const char* pszHost, std::uint16_t nPort, int nFamily, int nType, unsigned nFlags,
            Address& address) noexcept {
    std::array<char, 32> arrService{};
    std::snprintf(arrService.data(), arrService.size(), "%d", nPort);
    addrinfo hints{};
    hints.ai_family = nFamily;
    hints.ai_socktype = nType;
    hints.ai_flags = ((nFlags & Passive) != 0 ? AI_PASSIVE : 0) |
                     ((nFlags & NumericHost) != 0 ? AI_NUMERICHOST : 0);
    const Answer answer = ask(pszHost, arrService.data(), &hints);
    if (!answer) {
        return -1;
    }
    std::memcpy(address.arrBytes.data(), answer->ai_addr, answer->ai_addrlen);
    address.nLength = answer->ai_addrlen;
    return 0;
}

int parseIPv4(const char* pszText, std::uint16_t nPort, Address& address) noexcept {
    sockaddr_in parsed{};
    parsed.sin_family = AF_INET;
    parsed.sin_port = htons(nPort);
    if (::inet_aton(pszText, &parsed.sin_addr) == 0) {
        errno = EINVAL;
        return -1;
    }
    std::memcpy(address.arrBytes.data(), &parsed, sizeof(parsed));
    address.nLength = sizeof(parsed);
    return 0;
}

int describe(const Address& address, char* pszHost, std::size_t nSize,
             std::uint16_t& nPort) noexcept {
    std::array<char, 32> arrService{};
    const int nResult =
        ::getnameinfo(reinterpret_cast<const sockaddr*>(address.arrBytes.data()), address.nLength,
                      pszHost, static_cast<socklen_t>(nSize), arrService.data(),
                      static_cast<socklen_t>(arrService.size()), NI_NUMERICHOST | NI_NUMERICSERV);
    if (nResult != 0) {
        errno = EADDRNOTAVAIL;
        return -1;
    }
    nPort = static_cast<std::uint16_t>(std::atoi(arrService.data()));
    return 0;
}

std::optional<HostAnswer> lookUpHost(const char* pszName) {
    const Answer answer = ask(pszName, nullptr, nullptr);
    if (!answer) {
        return std::nullopt;
    }
    return HostAnswer{dottedTextBehindPort(*answer->ai_addr), ipVersionOf(answer->ai_family)};
}

std::optional<std::string> lookUpOwnHost() {
    std::array<char, 256> arrName{};
    if (::gethostname(arrName.data(), arrName.size() - 1) < 0) {
        return std::nullopt;
    }
    addrinfo hints{};
    hints.ai_family = AF_INET;
    const Answer answer = ask(arrName.data(), nullptr, &hints);
    if (!answer) {
        return std::nullopt;
    }
    return dottedTextBehindPort(*answer->ai_addr);
}

}  // namespace SocketApi
