// Prints the date of a device's clock and what its record is called: read_time PORT PASSWORD
#include <fleetkit/domain/DeviceTime.h>
#include <fleetkit/domain/RecordDescriptor.h>

#include <cstdio>

#include "DeviceLogin.h"

int main(int, char** argv) {
    const DeviceLogin login(argv[1], argv[2]);
    DeviceTime time;
    const int nCode = FleetKit::getDeviceTime(login.m_nHandle, time);
    std::printf("%s: %s %04d-%02d-%02d\n", fleetkit::errorMeaning(nCode),
                fleetkit::findRecordDescriptor(DeviceTime::DomainId)->szClass, time.getYear(),
                time.getMonth(), time.getDay());
    return nCode;
}
