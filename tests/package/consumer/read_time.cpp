// Prints the date of a device's clock and what its record is called: read_time PORT PASSWORD
#include <fleetkit/domain/DeviceTime.h>
#include <fleetkit/domain/RecordDescriptor.h>

#include <cstdio>

#include "DeviceLogin.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    const DeviceLogin login(argv[1], argv[2]);
    DeviceTime time;
    int nCode = login.code();
    if (nCode == fleetkit::ErrorCode::Success) {
        nCode = FleetKit::getDeviceTime(login.handle(), time);
    }
    if (nCode != fleetkit::ErrorCode::Success) {
        std::printf("%d %s\n", nCode, fleetkit::errorMeaning(nCode));
        return 1;
    }
    std::printf("%s %04d-%02d-%02d\n",
                fleetkit::findRecordDescriptor(DeviceTime::DomainId)->szClass, time.getYear(),
                time.getMonth(), time.getDay());
    return 0;
}
