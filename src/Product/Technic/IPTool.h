// Questions about address texts and about the addresses of this machine.
#pragma once

#include "Product/Technic/Export.h"

class InetAddr;

// Tells IPv4 from IPv6 texts, turns texts and host names into addresses, and keeps a list of this
// machine's addresses. Copyable; one object belongs to one thread at a time. Nothing throws for a
// wrong text: every failure is false.
//
// An IP version is 1 for IPv4 and 2 for IPv6.
//
// The two grammars are this library's own, and stranger than the standards:
//
// - IPv4: four segments of one to three digits, then an optional port: `10.0.0.7`, `10.0.0.7:80`.
//   Three-character segments end at 255, and at 254 in the last place, so that a broadcast address
//   like `192.168.1.255` is not an address. Leading zeros are fine, and a colon counts as a digit.
// - IPv6: up to eight pieces of at most four hexadecimal digits between colons, some of them empty,
//   then an optional prefix length of at most 128: `fe80::1/64`. The empty text, `1234` and `/64`
//   are addresses by it, and embedded IPv4 forms are not.
//
//     InetAddr address;
//     int nVersion = 0;
//     if (IPTool().checkIPAddress("fe80::1", nVersion)) ...  // 2
class FLEETKIT_EXPORT IPTool {
public:
    IPTool() = default;

    // Sets `version` when the text is an address, and leaves it alone otherwise. Null is no
    // address.
    bool checkIPAddress(const char* text, int& version);

    // Sets text and IP version of `out`, never its port. What neither grammar takes is looked up as
    // a host name.
    bool getInetAddr(const char* text, InetAddr& out);

    // Asks the system's resolver; this may take as long as the resolver does. When its first answer
    // is an IPv6 address, the version of `out` is 2 but its text is not that address: use names
    // that stand for IPv4 addresses.
    bool getIPbyHostname(const char* name, InetAddr& out);

    // Lists this machine's addresses of that version (every value but 1 means IPv6), those of the
    // loopback left out, at most 30 of them.
    bool enumIPList(int version);
    int getEnumIPNum();
    // Copies an entry of that list; `out` has space for 49 bytes.
    bool getEnumIP(int index, char* out);

    // The first IPv4 address that this machine's name stands for; `out` has space for 16 bytes. The
    // number is ignored.
    bool getLocalIP(int, char* out);

    // These answer true and do nothing.
    bool get3GIP(int, char*) { return true; }
    bool getAdslIP(int, char*) { return true; }
    bool getEthIP(int, char*) { return true; }
    bool getIpv6Mask(int&) { return true; }
    bool getMacAddr(char*) { return true; }

private:
    friend struct IPToolAccess;  // lets the tests reach what is private

    static constexpr int MaxEntries = 30;
    static constexpr int EntrySize = 49;

    bool checkIPv4Address(const char* text);
    bool checkIPv6Address(const char* text);
    // Writes the binary digits of a positive value without an end mark and gives their number; 0
    // for 0, -1 for a negative one.
    int dtob(int value, char* out);

    char m_szEntries[MaxEntries][EntrySize] = {};
    int m_nEntryCount = 0;
};
