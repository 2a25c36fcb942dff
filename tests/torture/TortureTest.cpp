// The library on a system that refuses it something at every point in turn, and through connections
// that carry few bytes at once. Each test has a process of its own: the first login starts a
// thread.
#include <gmock/gmock.h>
#include <pthread.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <new>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Product/Technic/KXLogger.h"
#include "device/FleetKit.h"
#include "device/Login.h"
#include "device/TarnStruct.h"
#include "device/TextFunctions.h"
#include "domain/DeviceTime.h"
#include "domain/DomainFactory.h"
#include "domainxml/DomainXmlFactory.h"
#include "domainxml/XmlCursor.h"
#include "support/LoginData.h"
#include "support/NextDoor.h"
#include "support/SampleRecords.h"
#include "support/TempDir.h"
#include "torture/Faults.h"
#include "virtual-device/VirtualDevice.h"

using namespace fleetkit;
using namespace fleetkit::ErrorCode;
using testing::Each;

namespace {

constexpr int Threw = 1;
constexpr std::size_t MostCalls = 7;
constexpr int Streams = 2;
constexpr int HeartbeatDescriptors = 1;
constexpr std::size_t SmallStack = 192U << 10;
constexpr int DeepestBody = 64;

// What each call comes to when it is refused; to nothing where the library can do without. Any
// other code, the device's among them, is a fault.
using Codes = std::set<int>;
const std::pair<std::string, Codes> Refusals[] = {
    {"new", {Threw, NoMemory, DecodeFailed, EncodeFailed, HeadRefused, CipherFailed}},
    {"socket", {SocketOpenFailed}},
    {"connect", {ConnectFailed}},
    {"send", {SendFailed}},
    {"recv", {ReceiveFailed, HeadRefused}},  // the rest of what broke off is no head
    {"poll", {ConnectFailed}},
    {"setsockopt", {}},
    {"fcntl", {ConnectFailed}},
    {"pthread_create", {}},
    {"getaddrinfo", {ConnectFailed}},
    {"fopen", {}},
};

class Torture : public testing::TestWithParam<std::pair<std::string, Codes>> {
public:
    // What each call gives, from login to logout.
    const std::vector<int>& day() {
        m_vecCodes.clear();
        const auto call = [&](const auto& function) {
            try {
                m_vecCodes.push_back(function());
            } catch (const std::bad_alloc&) {
                m_vecCodes.push_back(Threw);
            }
        };
        long handle = 0;
        call([&] { return login(m_info, handle); });
        if (handle != 0) {
            auto time =
                with(&DeviceTime::setYear, 2031, &DeviceTime::setMonth, 1, &DeviceTime::setDay, 1);
            call([&] { return FleetKit::getDeviceTime(handle, time); });
            call([&] { return FleetKit::setDeviceReSetTime(handle, 0, time); });
            call([&] {
                m_pStreams->Count = 0;
                const int nCode = FleetKit::getAllAVStreamParam(handle, *m_pStreams);
                EXPECT_EQ(m_pStreams->Count, nCode == Success ? Streams : 0);
                return nCode;
            });
            call([&] {
                m_pStreams->Count = Streams;
                return FleetKit::setAllAVStreamParam(handle, *m_pStreams);
            });
            call([&] { return setDevicePasswd(handle, "admin", "admin"); });
            call([&] {
                logToFile(m_directory.file("log"), "tag", "line", 100, 1);
                return 0;
            });
            EXPECT_EQ(FleetKit::Logout(handle), Success);
        }
        return m_vecCodes;
    }

    const NextDoor<std::uint16_t> m_camera{[](const auto& serve) {
        const VirtualDevice device;
        serve(device.getPort());
    }};
    const DeviceInfoEx m_info = loginData(m_camera.ports());
    const TempDir m_directory;
    const std::unique_ptr<NS_TARN_STRUCT::tagAllAVStreamParam> m_pStreams =
        std::make_unique<NS_TARN_STRUCT::tagAllAVStreamParam>();
    std::vector<int> m_vecCodes = std::vector<int>(MostCalls);
};

}  // namespace

TEST_P(Torture, EveryRefusalOfTheSystemIsACodeAndPasses) {
    const auto descriptors = [] {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return std::distance(begin(open), end(open));
    };
    const auto nDescriptors = descriptors();
    const auto& [strCall, setExpected] = GetParam();
    Codes setCodes;
    int nCall = 0;
    for (bool bFailed = true; bFailed; ++nCall) {
        {
            const Failing failing(strCall, nCall);
            day();
            bFailed = failing.hasFailed();
        }
        setCodes.insert(m_vecCodes.begin(), m_vecCodes.end());
        ASSERT_THAT(day(), Each(Success)) << "after " << strCall << " number " << nCall;
    }
    setCodes.erase(Success);
    EXPECT_EQ(setCodes, setExpected);
    EXPECT_GT(nCall, 1);
    EXPECT_LE(descriptors(), nDescriptors + HeartbeatDescriptors);
}

INSTANTIATE_TEST_SUITE_P(Calls, Torture, testing::ValuesIn(Refusals),
                         [](const auto& name) { return name.param.first; });

// The first allocation of each is the object itself.
TEST(Factories, GiveNothingWithoutMemory) {
    const std::string strSingle = "NTPParam";
    const std::string strList = "NTPParamList";
    const auto givesNothing = [](const auto& lookUp) {
        const Failing failing("new", 0);
        return lookUp() == nullptr && failing.hasFailed();
    };
    EXPECT_TRUE(givesNothing([&] { return createSingleDomain(strSingle); }));
    EXPECT_TRUE(givesNothing([&] { return createListDomain(strList); }));
    EXPECT_TRUE(givesNothing([&] { return createDomainXml(206); }));
    EXPECT_FALSE(createDomain(strList) == nullptr || createDomainXml(206) == nullptr);
}

TEST_F(Torture, MessagesArriveInAnyPieces) {
    std::minstd_rand random;
    std::vector<std::size_t> vecAny(1000);
    std::ranges::generate(vecAny, [&] { return 1 + random() % 100; });
    const std::vector<std::size_t> Sizes[] = {{1},        {7},           {23, 1000}, {24, 1000},
                                              {25, 1000}, {24, 1, 1000}, vecAny};
    for (const auto& vecSizes : Sizes) {
        const Pieces pieces(vecSizes);
        EXPECT_THAT(day(), Each(Success)) << vecSizes.front();
    }
}

TEST_F(Torture, AThreadNeedsNoMoreThanASmallStack) {
    pthread_attr_t attributes;
    pthread_t thread{};
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SmallStack), 0);
    const auto entry = [](void* pThis) -> void* {
        EXPECT_THAT(static_cast<Torture*>(pThis)->day(), Each(Success));
        for (const int nLevels : {DeepestBody, 1000}) {
            std::string strBody;
            for (int nLevel = 0; nLevel < nLevels; ++nLevel) {
                strBody = "<AVStreamParamList>" + strBody + "</AVStreamParamList>";
            }
            EXPECT_EQ(bool(XmlDocument::parse(strBody.c_str()).root()), nLevels == DeepestBody);
        }
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, entry, this), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}
