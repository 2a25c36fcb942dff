// The two exported functions that take texts of Qt: all of libFleetKitQt, so that only those who
// call them load Qt.
#include <QByteArray>
#include <QString>

#include "device/FleetKit.h"
#include "device/TextFunctions.h"

int FleetKit::setDevicePasswd(const long& handle, const QString& oldPassword,
                              const QString& newPassword) {
    return fleetkit::setDevicePasswd(handle, oldPassword.toStdString(), newPassword.toStdString());
}

int FleetKit::setDeviceHostNetwork(const QString& deviceId, HostNetwork& network, User& user) {
    return fleetkit::setDeviceHostNetwork(deviceId.toLocal8Bit().toStdString(), network, user);
}
