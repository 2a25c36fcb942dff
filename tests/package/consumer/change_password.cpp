// Changes the password of a device: change_password PORT OLD NEW
#include <QString>
#include <cstdio>

#include "DeviceLogin.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    const DeviceLogin login(argv[1], argv[2]);
    const int nCode =
        login.code() != fleetkit::ErrorCode::Success
            ? login.code()
            : FleetKit::setDevicePasswd(login.handle(), QString(argv[2]), QString(argv[3]));
    std::printf("%s\n", fleetkit::errorMeaning(nCode));
    return nCode == fleetkit::ErrorCode::Success ? 0 : 1;
}
