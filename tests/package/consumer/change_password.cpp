// Changes the password of a device: change_password PORT OLD NEW
#include <QString>

#include "DeviceLogin.h"

int main(int, char** argv) {
    const DeviceLogin login(argv[1], argv[2]);
    return FleetKit::setDevicePasswd(login.m_nHandle, QString(argv[2]), QString(argv[3]));
}
