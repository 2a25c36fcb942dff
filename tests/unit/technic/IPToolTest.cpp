// The two address grammars, the lookups and the list of this machine's addresses.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/IPTool.h"
#include "support/Addresses.h"

struct IPToolAccess {
    static int dtob(int nValue, char* pszOut) { return IPTool().dtob(nValue, pszOut); }
};

namespace {

// Puts adapters in the place of the system's for one test; without any the system refuses the list.
class IPToolAdapters : public testing::Test {
protected:
    IPToolAdapters() {
        setAdapterLister([this](std::vector<NetworkAdapter>& vecOut) {
            vecOut = m_vecAdapters;
            return !m_vecAdapters.empty();
        });
    }
    ~IPToolAdapters() override { setAdapterLister({}); }

    static std::vector<std::string> names() {
        std::vector<std::string> vecNames{"of before"};
        getAdapterNames(vecNames);
        return vecNames;
    }

    std::vector<std::string> list(int nVersion) {
        EXPECT_TRUE(m_tool.enumIPList(nVersion));
        std::vector<std::string> vecTexts;
        for (char szText[49]; m_tool.getEnumIP(static_cast<int>(vecTexts.size()), szText);) {
            vecTexts.emplace_back(szText);
        }
        EXPECT_EQ(static_cast<int>(vecTexts.size()), m_tool.getEnumIPNum());
        return vecTexts;
    }

    std::vector<NetworkAdapter> m_vecAdapters;
    IPTool m_tool;
};

}  // namespace

TEST(IPTool, TellsAddressesByItsOwnGrammars) {
    constexpr int Untouched = -7;  // the version after a text of neither grammar
    const struct {
        int m_nVersion;
        std::vector<const char*> m_vecTexts;
    } arrCases[] = {
        {1, {"1.2.3.4", "0.0.0.0", "255.255.255.0", "249.1.1.1", "199.255.1.254"}},
        {1, {"001.002.003.004", "1:2.3.4.5"}},
        {1, {"1.2.3.4:80", "1.2.3.4:65535", "1.2.3.4:80:99"}},
        {Untouched, {"256.1.1.1", "260.1.1.1", "2:9.1.1.1", "300.1.1.1", "1.2.3.255", "1.2.3.256"}},
        {Untouched, {"1.2.3.4:0", "1.2.3.4:65536", "1.2.3.4:4294967376", "1.2.3.4:", "1.2.3.:80"}},
        {Untouched, {"1.2.3.4.", "1.2.3.4.5", "1.2.3", "1.2.3.", "1..3.4", "1.2.3.4 "}},
        {Untouched, {"1000.2.3.4", "1.2.3.4567"}},
        {2, {"", "1234", "abcd", "ABCD::ef01", ":", "::", "1::2::3", "fe80::1"}},
        {2, {"/64", "fe80::1/128", "fe80::1/", "1:2:3:4:5:6:7:8", "1:2:3:4:5:6:7:8:"}},
        {Untouched, {"fe80::1/129", "fe80::1/-1", "fe80::1/99999999999999999999", "fe80/::1/64"}},
        {Untouched, {"1:2:3:4:5:6:7:8:9", "12345", "::ffff:1.2.3.4", "fe80::1%eth0"}},
        {Untouched, {"host", nullptr}},
    };
    for (const auto& [nVersion, vecTexts] : arrCases) {
        for (const char* pText : vecTexts) {
            int nFound = Untouched;
            EXPECT_EQ(IPTool().checkIPAddress(pText, nFound), nVersion != Untouched) << pText;
            EXPECT_EQ(nFound, nVersion) << pText;
        }
    }
}

TEST(IPTool, AddressTextsAreTakenAsTheyAreAndOthersLookedUp) {
    const std::tuple<const char*, const char*, int> arrCases[] = {
        {"1.2.3.4:80", "1.2.3.4:80", 1},
        {"fe80::1/64", "fe80::1/64", 2},
        {"192.168.1.255", "192.168.1.255", 1},  // not by the grammar, but to the resolver
        {"::ffff:1.2.3.4", "0.0.0.0", 2},       // the four bytes behind an IPv6 port
    };
    InetAddr address;
    address.setPORT(77);
    for (const auto& [pText, pIP, nVersion] : arrCases) {
        EXPECT_TRUE(IPTool().getInetAddr(pText, address)) << pText;
        EXPECT_EQ(address.getIP(), pIP);
        EXPECT_EQ(address.getIPProtoVer(), nVersion);
        EXPECT_EQ(address.getPORT(), 77);
    }
    EXPECT_FALSE(IPTool().getInetAddr(nullptr, address));
    EXPECT_FALSE(IPTool().getIPbyHostname("not a name", address));
    EXPECT_FALSE(IPTool().getLocalIP(0, nullptr));
    EXPECT_EQ(address.getIP(), "0.0.0.0");
}

TEST_F(IPToolAdapters, AddressesAreListedByVersionInTheOrderOfTheSystemUpToABound) {
    m_vecAdapters = {{"lan0", {addressOf("10.0.0.7"), addressOf("fe80::7%lan0", 0, 2)}},
                     {"empty0", {}},
                     {"lan1", {addressOf("::1", 0, 2), addressOf("10.0.1.7")}}};
    char szText[49];
    EXPECT_EQ(m_tool.getEnumIPNum(), 0);
    EXPECT_EQ(list(1), (std::vector<std::string>{"10.0.0.7", "10.0.1.7"}));
    EXPECT_EQ(list(2), (std::vector<std::string>{"fe80::7%lan0"}));
    EXPECT_FALSE(m_tool.getEnumIP(-1, szText) || m_tool.getEnumIP(0, nullptr));
    EXPECT_EQ(names(), (std::vector<std::string>{"lan0", "empty0", "lan1"}));

    m_vecAdapters = {{"lan0", std::vector<InetAddr>(40, addressOf(std::string(100, 'a'), 0, 2))}};
    EXPECT_EQ(list(2), std::vector<std::string>(30, std::string(48, 'a')));

    m_vecAdapters.clear();
    EXPECT_FALSE(m_tool.enumIPList(1));
    EXPECT_TRUE(names().empty());
}

TEST(IPTool, WritesBinaryDigitsWithoutAnEnd) {
    const std::tuple<int, int, std::string> arrCases[] = {
        {6, 3, "110###"}, {1, 1, "1#####"}, {0, 0, "######"}, {-1, -1, "######"}};
    for (const auto& [nValue, nDigits, strWritten] : arrCases) {
        std::string strOut = "######";
        EXPECT_EQ(IPToolAccess::dtob(nValue, strOut.data()), nDigits);
        EXPECT_EQ(strOut, strWritten);
    }
}
