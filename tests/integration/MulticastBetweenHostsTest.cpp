// The network of a device set without a session, from one machine to another: the library here, the
// program virtual-device on a neighbour that only a cable connects with this one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QString>
#include <cstdlib>
#include <string>
#include <vector>

#include "Product/Technic/AdapterList.h"
#include "device/FleetKit.h"
#include "domain/DeviceSummaryInfo.h"
#include "domain/HostNetwork.h"
#include "domain/User.h"
#include "integration/LoginData.h"
#include "support/NeighbourHost.h"
#include "support/SampleRecords.h"

using namespace fleetkit;

namespace {

constexpr const char* NewAddress = "10.77.0.99";

std::string addressOfDevice() {
    long handle = 0;
    EXPECT_EQ(FleetKit::Login(loginData(40000, NeighbourAddress), handle), ErrorCode::Success);
    DeviceSummaryInfo summary;
    EXPECT_EQ(FleetKit::getDeviceSummaryInfo(handle, summary), ErrorCode::Success);
    return summary.getDeviceIP();
}

int setAddress() {
    auto network = with(&HostNetwork::setLocalIp, NewAddress);
    network.setIPProtoVer(1);
    const HostNetwork networkBefore = network;
    User user;
    user.setUserName("admin");
    user.setPassword("admin");
    const User userBefore = user;
    const int nCode = FleetKit::setDeviceHostNetwork("mine", network, user);
    EXPECT_TRUE(network == networkBefore);
    EXPECT_TRUE(user == userBefore);
    return nCode;
}

void besideDevice(const std::string& strOptions, const std::function<void()>& body) {
    const std::string strProgram =
        VIRTUAL_DEVICE_PROGRAM +
        (" --multicast --device-id mine --port 40000 --seconds 60 --bind " +
         std::string(NeighbourAddress) + strOptions);
    const bool bRan = runBesideHost(strProgram, [&](const NeighbourHost& host) {
        ASSERT_THAT(host.readLine(), testing::HasSubstr("listening on"));
        body();
    });
    if (!bRan) {
        GTEST_SKIP() << "no two hosts can be made here: no network namespaces, or no program ip";
    }
}

}  // namespace

TEST(MulticastBetweenHosts, SetsTheDeviceThatIsNamed) {
    besideDevice("", [] {
        ASSERT_EQ(std::system("ip addr add 10.77.0.3/24 dev near label near:1"), 0);
        std::vector<std::string> vecAdapters;
        getAdapterNames(vecAdapters);
        EXPECT_THAT(vecAdapters, testing::ElementsAre("near")) << "a label is no adapter";
        EXPECT_EQ(addressOfDevice(), NeighbourAddress);
        EXPECT_EQ(setAddress(), ErrorCode::Success);
        EXPECT_EQ(addressOfDevice(), NewAddress);
    });
}

// Damaged answers give themselves away by their codes: they did arrive.
TEST(MulticastBetweenHosts, HearsWhatTheDeviceAnswers) {
    besideDevice(" --misbehave strays=4:32506", [] {
        EXPECT_EQ(setAddress(), ErrorCode::BadReply);
        EXPECT_EQ(addressOfDevice(), NewAddress);
    });
    besideDevice(" --misbehave bad-checksum:32506",
                 [] { EXPECT_EQ(setAddress(), ErrorCode::DecodeFailed); });
}
