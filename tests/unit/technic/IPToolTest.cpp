// The two address grammars, the lookups and the list of this machine's addresses.
#include <cstring>
#include <string>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "Product/Technic/IPTool.h"
#include "Product/Technic/InetAddr.h"
#include "gtest/gtest.h"

struct IPToolAccess {
    static int dtob(int nValue, char* pszOut) { return IPTool().dtob(nValue, pszOut); }
};

namespace {

InetAddr addressOf(const char* pszText, int nVersion) {
    InetAddr address;
    address.setIP(pszText);
    address.setIPProtoVer(nVersion);
    return address;
}

// Puts a list of adapters in the place of the system's for one test.
class IPToolAdapters : public testing::Test {
protected:
    void TearDown() override { setAdapterLister({}); }

    static void use(std::vector<NetworkAdapter> vecAdapters) {
        setAdapterLister([=](std::vector<NetworkAdapter>& vecOut) {
            vecOut = vecAdapters;
            return true;
        });
    }
};

TEST(IPTool, TellsAddressesByItsOwnGrammars) {
    constexpr int Neither = 0;
    const struct {
        const char* pszText;
        int nVersion;
    } cases[] = {
        {"1.2.3.4", 1},
        {"0.0.0.0", 1},
        {"255.255.255.0", 1},
        {"249.1.1.1", 1},
        {"199.255.1.254", 1},
        {"001.002.003.004", 1},
        {"1.2.3.4:80", 1},
        {"1.2.3.4:65535", 1},
        {"1.2.3.4:80:99", 1},
        {"1:2.3.4.5", 1},
        {"256.1.1.1", Neither},
        {"260.1.1.1", Neither},
        {"2:9.1.1.1", Neither},
        {"300.1.1.1", Neither},
        {"1.2.3.255", Neither},
        {"1.2.3.256", Neither},
        {"1.2.3.4:0", Neither},
        {"1.2.3.4:65536", Neither},
        {"1.2.3.4:4294967376", Neither},
        {"1.2.3.4:", Neither},
        {"1.2.3.:80", Neither},
        {"1.2.3.4.", Neither},
        {"1.2.3.4.5", Neither},
        {"1.2.3", Neither},
        {"1.2.3.", Neither},
        {"1..3.4", Neither},
        {"1.2.3.4 ", Neither},
        {"1000.2.3.4", Neither},
        {"1.2.3.4567", Neither},
        {"", 2},
        {"1234", 2},
        {"abcd", 2},
        {"ABCD::ef01", 2},
        {"/64", 2},
        {":", 2},
        {"::", 2},
        {"1::2::3", 2},
        {"fe80::1", 2},
        {"fe80::1/128", 2},
        {"fe80::1/", 2},
        {"1:2:3:4:5:6:7:8", 2},
        {"1:2:3:4:5:6:7:8:", 2},
        {"1:2:3:4:5:6:7:8:9", Neither},
        {"fe80::1/129", Neither},
        {"fe80::1/-1", Neither},
        {"fe80::1/99999999999999999999", Neither},
        {"fe80/::1/64", Neither},
        {"12345", Neither},
        {"::ffff:1.2.3.4", Neither},
        {"fe80::1%eth0", Neither},
        {"host", Neither},
        {nullptr, Neither},
    };
    for (const auto& [pszText, nVersion] : cases) {
        int nFound = -7;
        EXPECT_EQ(nVersion != Neither, IPTool().checkIPAddress(pszText, nFound)) << pszText;
        EXPECT_EQ(nVersion == Neither ? -7 : nVersion, nFound) << pszText;
    }
}

TEST(IPTool, AddressTextsAreTakenAsTheyAreAndOthersLookedUp) {
    const struct {
        const char* pszText;
        const char* pszIP;
        int nVersion;
    } cases[] = {
        {"1.2.3.4:80", "1.2.3.4:80", 1},       {"fe80::1/64", "fe80::1/64", 2}, {"", "", 2},
        {"192.168.1.255", "192.168.1.255", 1},  // not by the grammar, but to the resolver
        {"::ffff:1.2.3.4", "0.0.0.0", 2},       // the four bytes behind an IPv6 port
    };
    for (const auto& [pszText, pszIP, nVersion] : cases) {
        InetAddr address;
        address.setPORT(77);
        EXPECT_TRUE(IPTool().getInetAddr(pszText, address)) << pszText;
        EXPECT_EQ(pszIP, address.getIP());
        EXPECT_EQ(nVersion, address.getIPProtoVer());
        EXPECT_EQ(77, address.getPORT());
    }
    InetAddr address;
    EXPECT_FALSE(IPTool().getInetAddr(nullptr, address));
    EXPECT_FALSE(IPTool().getIPbyHostname("not a name", address));
    EXPECT_EQ("", address.getIP());
}

TEST(IPTool, ALocalAddressIsAnIPv4Text) {
    char szText[49] = {};
    IPTool tool;
    EXPECT_FALSE(tool.getLocalIP(0, nullptr));
    if (tool.getLocalIP(0, szText)) {
        int nVersion = 0;
        EXPECT_TRUE(tool.checkIPAddress(szText, nVersion)) << szText;
        EXPECT_EQ(1, nVersion);
    } else {
        EXPECT_STREQ("", szText);
    }
}

TEST_F(IPToolAdapters, AddressesAreListedByVersionInTheOrderOfTheSystem) {
    use({{"lan0", {addressOf("10.0.0.7", 1), addressOf("fe80::7%lan0", 2)}},
         {"empty0", {}},
         {"lan1", {addressOf("::1", 2), addressOf("10.0.1.7", 1)}}});
    IPTool tool;
    char szText[49] = {};
    EXPECT_EQ(0, tool.getEnumIPNum());
    ASSERT_TRUE(tool.enumIPList(1));
    ASSERT_EQ(2, tool.getEnumIPNum());
    EXPECT_TRUE(tool.getEnumIP(0, szText));
    EXPECT_STREQ("10.0.0.7", szText);
    EXPECT_TRUE(tool.getEnumIP(1, szText));
    EXPECT_STREQ("10.0.1.7", szText);
    EXPECT_FALSE(tool.getEnumIP(2, szText));
    EXPECT_FALSE(tool.getEnumIP(-1, szText));
    EXPECT_FALSE(tool.getEnumIP(0, nullptr));

    IPTool copy;
    copy = tool;
    ASSERT_TRUE(tool.enumIPList(2));
    ASSERT_EQ(1, tool.getEnumIPNum());
    EXPECT_TRUE(tool.getEnumIP(0, szText));
    EXPECT_STREQ("fe80::7%lan0", szText);
    EXPECT_EQ(2, copy.getEnumIPNum());

    std::vector<std::string> vecNames{"of before"};
    getAdapterNames(vecNames);
    EXPECT_EQ((std::vector<std::string>{"lan0", "empty0", "lan1"}), vecNames);
}

TEST_F(IPToolAdapters, TheTableIsBounded) {
    const std::string strLong(100, 'a');
    use({{"lan0", std::vector<InetAddr>(40, addressOf(strLong.c_str(), 2))}});
    IPTool tool;
    char szText[49] = {};
    ASSERT_TRUE(tool.enumIPList(2));
    ASSERT_EQ(30, tool.getEnumIPNum());
    ASSERT_TRUE(tool.getEnumIP(29, szText));
    EXPECT_EQ(strLong.substr(0, 48), szText);
}

TEST_F(IPToolAdapters, AListThatTheSystemRefusesIsAFailure) {
    setAdapterLister([](std::vector<NetworkAdapter>&) { return false; });
    IPTool tool;
    std::vector<std::string> vecNames{"of before"};
    EXPECT_FALSE(tool.enumIPList(1));
    getAdapterNames(vecNames);
    EXPECT_TRUE(vecNames.empty());
}

TEST(IPTool, TheSystemsListLeavesOutTheLoopback) {
    std::vector<NetworkAdapter> vecAdapters;
    ASSERT_TRUE(listAdapters(vecAdapters));
    for (const NetworkAdapter& adapter : vecAdapters) {
        EXPECT_NE("lo", adapter.strName);
        for (const InetAddr& address : adapter.vecAddresses) {
            EXPECT_NE("127.0.0.1", address.getIP());
            EXPECT_NE("::1", address.getIP());
            EXPECT_NE("", address.getIP());
        }
    }
}

TEST(IPTool, WritesBinaryDigitsWithoutAnEnd) {
    const struct {
        int nValue;
        int nDigits;
        const char* pszBuffer;
    } cases[] = {{5, 3, "101#"}, {1, 1, "1#"},
                 {0, 0, "#"},    {-1, -1, "#"},
                 {6, 3, "110#"}, {2147483647, 31, "1111111111111111111111111111111#"}};
    for (const auto& [nValue, nDigits, pszBuffer] : cases) {
        char szOut[40];
        std::memset(szOut, '#', sizeof(szOut));
        EXPECT_EQ(nDigits, IPToolAccess::dtob(nValue, szOut));
        EXPECT_EQ(pszBuffer, std::string(szOut, std::strlen(pszBuffer)));
    }
}

TEST(IPTool, SomeQuestionsAreAnsweredWithoutAnAnswer) {
    IPTool tool;
    char szText[] = "kept";
    int nMask = 24;
    EXPECT_TRUE(tool.get3GIP(0, szText) && tool.getAdslIP(0, szText) && tool.getEthIP(0, szText));
    EXPECT_TRUE(tool.getMacAddr(szText) && tool.getIpv6Mask(nMask));
    EXPECT_STREQ("kept", szText);
    EXPECT_EQ(24, nMask);
}

}  // namespace
