// Host names and address texts to socket addresses and back, by the system's resolver.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "Product/Technic/platform/SocketApi.h"

namespace SocketApi {

// What `resolve` is told beside host and port; the values may be joined.
enum ResolveFlag : unsigned {
    Passive = 1,      // a null host is the any-address
    NumericHost = 2,  // the host is an address text; no name is looked up
};

// The first address of host and port, for sockets of this family and type (1 stream, 2 datagram).
// Negative, with `errno` set, when there is none; it never leaves `errno` at 0 then.
int resolve(const char* pszHost, std::uint16_t nPort, int nFamily, int nType, unsigned nFlags,
            Address& address) noexcept;

// An IPv4 address text without any lookup; negative, with `errno` set, for any other text.
int parseIPv4(const char* pszText, std::uint16_t nPort, Address& address) noexcept;

// Address text and port of an address. Negative when it is no IP address or the text does not fit
// into `nSize` bytes.
int describe(const Address& address, char* pszHost, std::size_t nSize,
             std::uint16_t& nPort) noexcept;

struct HostAnswer {
    std::string strText;
    int nIpVersion = 0;  // 0 when the address is of another family
};

// The first answer to a host name of any family. The text is always made of the four bytes that an
// IPv4 address has behind its port: for an IPv6 answer it is *not* the address.
std::optional<HostAnswer> lookUpHost(const char* pszName);

// The first IPv4 address that this machine's own name stands for.
std::optional<std::string> lookUpOwnHost();

}  // namespace SocketApi
