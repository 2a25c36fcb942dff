// The library's face: everything that it can do with a device.
#pragma once

#include <string>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/Export.h"

class QString;

class AudioExAbility;
class AVStreamParam;
class BlindAbility;
class ChannelInfo;
class DeviceInfoEx;
class DevicePort;
class DeviceSummaryInfo;
class DeviceTime;
class DiskAbility;
class ExternUARTAbility;
class HardwareCapability;
class HostNetwork;
class LanguageAbility;
class MotionDetectionAbility;
class NetworkAbility;
class NTPParam;
class OSDAbility;
class OSDUserParam;
class ProtocolSecurityParam;
class PTZAbilityParam;
class SensorAbility;
class SoftwareCapability;
class TimeZoneAbility;
class TimeZoneParam;
class User;
class VideoAbility;

namespace NS_TARN_STRUCT {
struct tagAllAVStreamParam;
struct tagAllChannelInfo;
struct tagDeviceInfoEx;
struct tagOSDUserParamList;
}  // namespace NS_TARN_STRUCT

// Management of network video devices: log in to a device, read and change its parameters by the
// handle of the session, log out. All functions are static; the class has no data.
//
//     #include <fleetkit/FleetKit.h>
//     #include <fleetkit/domain/DeviceInfoEx.h>
//     #include <fleetkit/domain/DeviceTime.h>
//
//     InetAddr address;
//     address.setIP("192.0.2.7");
//     address.setPORT(30001);
//     address.setIPProtoVer(1);
//     DeviceInfoEx device;
//     device.setDeviceAddr(address);
//     device.setUserID("admin");
//     device.setPassword("secret");
//
//     long session = 0;
//     if (FleetKit::Login(device, session) == fleetkit::ErrorCode::Success) {
//         DeviceTime time;
//         int code = FleetKit::getDeviceTime(session, time);
//         FleetKit::Logout(session);
//     }
//
// Records, the classes that functions read and fill, stand in headers of their names
// (`<fleetkit/domain/NTPParam.h>`); the plain structures of `NS_TARN_STRUCT` stand in
// `<fleetkit/TarnStruct.h>`.
//
// # Result codes
//
// Every function returns 0 (Success), a code of `fleetkit::ErrorCode`, or the number that the
// device itself put into its answer, passed on unchanged; `fleetkit::errorMeaning` tells them in
// English. Where a function below says "exchange", its codes are:
//
// - Success (0): the device has done it.
// - Failed (-1): the handle names no session, or no longer does; nothing was sent.
// - NoTransport (-4): the session was closed while the call was under way.
// - SendFailed (-210): the request could not be sent, or not all of it within 3 s.
// - ReceiveFailed (-212): the connection broke. ReceiveTimedOut (-213): nothing came for 5 s, or
//   the answer was not complete 10 s after the request.
// - HeadRefused (-402): what came is not this protocol; the session stays so, log in again.
// - NoMemory (-2): an answer of more than 256 MiB, or no memory for it.
// - DecodeFailed (-233): the answer could not be decoded. EncodeFailed (-234): the request could
//   not be encoded. The session goes on after either.
// - BadReply (-501): the wrong answer, more than three stray messages before it, or an answer
//   without result code or without the record asked for.
// - Any other number: the device refused, for a reason of its own.
//
// None of these ends the session. What a function fills is written on Success only, and left as it
// was otherwise.
//
// # Threads and time
//
// Every function may be called from any thread, and several at once. A call does its work on the
// caller's thread and returns when the device has answered or the time is over. Calls on one
// session run one after the other, so a call also waits for those before it. An exchange
// takes 13 s at most, whatever the device sends; `fleetkit::setExchangeTimeout` sets other limits.
// `startPlay` is to be called by one thread at a time. A thread that is cancelled inside a call
// ends when the call does.
//
// In the background a session that is not dead is kept alive by a short command once a minute.
// After three failures in a row it is dropped, and its handle is gone: the next call gives Failed.
//
// A handle is a small positive number and never used again while the process lives.
//
// # Standard output
//
// The log goes to standard output and is silent until `fleetkit::setLogFilter` says otherwise. Some
// lines belong to no threshold and cannot be silenced: a device that leaves out a field that it
// should have sent makes the reader of the record say so on standard output. A program whose
// standard output is data gives the library another descriptor 1, as `fleetctl` does.
//
// # Exceptions
//
// `Login` and `Logout` throw nothing. The other functions throw only what the process itself does
// to them, as when memory for a request is refused; a device cannot make a function throw.
class FLEETKIT_EXPORT FleetKit {
public:
    // ---- Life cycle

    // Does nothing and gives Success: the library is ready once it is loaded. May be called or left
    // out, any number of times.
    static int Init();

    // Does nothing and gives Success; open sessions stay open.
    static int UnInit();

    // Connects to the device over TCP (within 3 s) and logs in.
    //
    // `info` needs `DeviceAddr` (IP text or host name, port, IP version 1 for IPv4 or 2 for IPv6),
    // `UserID` and `Password`; with `RouterMappingEnableFlag` set, `RouterAddr` and
    // `RouterMappingControlPort` are dialled instead. User name and password travel enciphered.
    //
    // Set `handle` to 0 before the call: when the login fails for any reason, a positive value that
    // stood there makes the call give Success and stays. From 0 a failed login gives Failed (-1),
    // never the reason, which `fleetkit::login` of `<fleetkit/Login.h>` gives, and leaves it 0.
    // NoMemory (-2) when an exception was caught.
    //
    //     long session = 0;
    //     int code = FleetKit::Login(device, session);
    static int Login(const DeviceInfoEx& info, long& handle);

    // Logs out, closes the connection and forgets the handle, in this order and also when the
    // device no longer answers (which costs the 5 s of the answer).
    //
    // Success (0); UnknownHandle (-3) when the handle names no session, and nothing is sent; Failed
    // (-1) when an exception was caught.
    static int Logout(const long& handle);

    // ---- Device actions and settings

    // Changes the password of the session's user. Both travel enciphered. Stands in libFleetKitQt,
    // as the texts are Qt's; `fleetkit::setDevicePasswd` takes those of the standard library.
    // An exchange, or CipherFailed (-663) and nothing is sent.
    // The session goes on; a later `Logout` still shows the device the password of the login.
    static int setDevicePasswd(const long& handle, const QString& oldPassword,
                               const QString& newPassword);

    // Restarts the device. An exchange. The connection usually dies soon after.
    static int setDeviceRestart(const long& handle);

    // Resets the device to its defaults, except for the kinds of setting in `holdTypes`, by the
    // device's numbers; an empty list keeps nothing. An exchange.
    //
    //     FleetKit::setDeviceReset(session, {1, 3});
    static int setDeviceReset(const long& handle, const std::vector<int>& holdTypes);

    // Sets the clock. An exchange. The `int` is ignored.
    static int setDeviceReSetTime(const long& handle, const int& ignored, const DeviceTime& time);

    // Sets the time zone. An exchange.
    static int setTimeZoneParam(const long& handle, const TimeZoneParam& timeZone);

    // Sets the network parameters of a network card. An exchange. The `int` is ignored. A device
    // that takes a new address may well not answer on the old one: ReceiveTimedOut (-213) or
    // ReceiveFailed (-212) can mean success here.
    static int setDeviceHostNetwork(const long& handle, const int& ignored,
                                    const HostNetwork& network);

    // Sets the network parameters of a device that cannot be logged in to, by UDP multicast (group
    // 234.5.6.7, port 31001, from local port 31002): no session is needed. Stands in libFleetKitQt;
    // `fleetkit::setDeviceHostNetwork` does the same for texts of the standard library.
    //
    // `deviceId` names the device, `user` holds `UserName` and `Password` of an account on it (they
    // travel enciphered). Neither `network` nor `user` is changed.
    //
    // The command goes out once for every network adapter of this machine, one after the other, and
    // each waits up to 3 s for an answer. Success (0) when at least one adapter had an answer *or
    // none within its time*: a device may well not answer from its old address, so Success does not
    // prove that a device was there. A device that two adapters reach gets the command twice.
    // Otherwise the code of the last adapter: Failed (-1) when the machine has no adapter,
    // SocketOpenFailed (-202), CipherFailed (-663), EncodeFailed (-234), SendFailed (-210),
    // ReceiveFailed (-212), BadReply (-501) after four datagrams that answer something else or
    // nothing at all. Two calls at once see each other's answers and sort them out as strays.
    //
    //     FleetKit::setDeviceHostNetwork(QString("IPC-0042"), network, user);
    static int setDeviceHostNetwork(const QString& deviceId, HostNetwork& network, User& user);

    // Sets the time servers. An exchange.
    static int setNTPParam(const long& handle, const NTPParam& ntp);

    // Has the device run a command line of its own. An exchange.
    // `result` is neither read nor written: what the command prints never gets here.
    static int exeCommand(const long& handle, const std::string& command, std::string& result);

    // What the hardware has: interfaces and their numbers. An exchange.
    static int getHardwareCapability(const long& handle, HardwareCapability& capability);

    // What the firmware can do. An exchange.
    static int getSoftwareCapability(const long& handle, SoftwareCapability& capability);

    // The languages of the device. An exchange.
    static int getLanguageAbility(const long& handle, LanguageAbility& ability);

    // What the network cards can do. An exchange.
    static int getNetworkAbility(const long& handle, NetworkAbility& ability);

    // The time zones that the device knows, in the language of that id (see `getLanguageAbility`).
    // An exchange.
    static int getTimeZoneAbility(const long& handle, int languageId, TimeZoneAbility& ability);

    // Maker, model, versions and the like. An exchange.
    static int getDeviceSummaryInfo(const long& handle, DeviceSummaryInfo& info);

    // The disks and what they can do. An exchange.
    static int getDiskAbility(const long& handle, DiskAbility& ability);

    // The serial ports. An exchange.
    static int getExternUARTAbility(const long& handle, ExternUARTAbility& ability);

    // Sets the ports that the device listens on. An exchange.
    static int setDevicePort(const long& handle, const DevicePort& port);

    // The ports that the device listens on. An exchange.
    static int getDevicePort(const long& handle, DevicePort& port);

    // The device's clock. An exchange.
    static int getDeviceTime(const long& handle, DeviceTime& time);

    // The time zone. An exchange.
    static int getTimeZoneParam(const long& handle, TimeZoneParam& timeZone);

    // The default of the time zone with that number. An exchange. The request is that of
    // `getTimeZoneParam` with the number put in front; a device that does not look at it answers
    // with the current setting.
    static int getTimeZoneDefaultParam(const long& handle, int timeZoneId, TimeZoneParam& timeZone);

    // The time servers. An exchange.
    //
    //     NTPParam ntp;
    //     int code = FleetKit::getNTPParam(session, ntp);
    static int getNTPParam(const long& handle, NTPParam& ntp);

    // Sets how the device's protocols are secured. An exchange.
    static int setProtocolSecurityParam(const long& handle, const ProtocolSecurityParam& security);

    // How the device's protocols are secured. An exchange.
    static int getProtocolSecurityParam(const long& handle, ProtocolSecurityParam& security);

    // ---- Streams and on-screen texts
    //
    // A channel or a stream is the device's own number of it; it goes out as given.

    // Sets the parameters of all streams of all channels. An exchange. A count below 1 sends an
    // empty list.
    static int setAllAVStreamParam(const long& handle,
                                   const NS_TARN_STRUCT::tagAllAVStreamParam& streams);

    // All streams of all channels. An exchange. `streams` is read as well as written: set its
    // `Count`, to 0 at best, before the call. Streams beyond the capacity are left out.
    //
    //     auto streams = std::make_unique<NS_TARN_STRUCT::tagAllAVStreamParam>();
    //     int code = FleetKit::getAllAVStreamParam(session, *streams);
    static int getAllAVStreamParam(const long& handle,
                                   NS_TARN_STRUCT::tagAllAVStreamParam& streams);

    // Sets the parameters of all streams of one channel. An exchange.
    static int setAVStreamParam(const long& handle, const int& channel,
                                const NS_TARN_STRUCT::tagAllAVStreamParam& streams);

    // Sets the parameters of one stream. An exchange. `stream` is ignored: the number of the
    // channel goes out in its place, so channel 2 and stream 1 set stream 2 of channel 2.
    static int setAVStreamParam(const long& handle, const int& channel, const int& stream,
                                const AVStreamParam& param);

    // All streams of one channel. An exchange. Streams beyond the capacity are left out.
    static int getAVStreamParam(const long& handle, const int& channel,
                                NS_TARN_STRUCT::tagAllAVStreamParam& streams);

    // One stream: the first that the device answers with. An exchange, or EmptyStreamList (-513)
    // when it answers with none.
    static int getAVStreamParam(const long& handle, const int& channel, const int& stream,
                                AVStreamParam& param);

    // Despite its name this is `setOSDUserParam`: it *sends* the record to the device, which
    // changes its texts, and leaves the record as it was. Use `getAllOSDUserParam` to read. An
    // exchange.
    static int getOSDUserParam(const long& handle, int channel, OSDUserParam& param);

    // Sets the on-screen texts of one channel. An exchange.
    static int setOSDUserParam(const long& handle, int channel, const OSDUserParam& param);

    // Sets the on-screen texts of all channels. An exchange. A count below 1 sends an empty list.
    static int setAllOSDUserParam(const long& handle,
                                  const NS_TARN_STRUCT::tagOSDUserParamList& params);

    // The on-screen texts of all channels. An exchange. Elements, canvases and texts beyond the
    // capacities are left out, long texts are cut.
    static int getAllOSDUserParam(const long& handle, NS_TARN_STRUCT::tagOSDUserParamList& params);

    // ---- Abilities and channels, by the type of the device
    //
    // `deviceType` is 1, 4, 8, 9, 13, 14 or 15 for an IP camera, 5, 10 or 103 for a recorder. Every
    // other value, and a recorder's or a camera's where a function serves only the other, gives
    // Failed (-1) and nothing is sent. A camera's abilities are asked for without a channel, the
    // argument is ignored; with a recorder it is the recorder's channel.

    // What the video encoders can do. An exchange, or Failed (-1) for the device type.
    //
    //     VideoAbility ability;
    //     int code = FleetKit::getVideoAbility(session, 5, channel, ability);
    static int getVideoAbility(const long& handle, const int& deviceType, const int& channel,
                               VideoAbility& ability);

    // What the audio encoders can do. An exchange, or Failed (-1) for the device type.
    static int getAudioAbility(const long& handle, const int& deviceType, const int& channel,
                               AudioExAbility& ability);

    // The privacy masks. An exchange, or Failed (-1) for the device type.
    static int getBlindAbility(const long& handle, const int& deviceType, const int& channel,
                               BlindAbility& ability);

    // What on-screen texts can show. An exchange, or Failed (-1) for the device type.
    static int getOSDAbility(const long& handle, const int& deviceType, const int& channel,
                             OSDAbility& ability);

    // What motion detection can do. An exchange, or Failed (-1) for the device type.
    static int getMotionDetectionAbility(const long& handle, const int& deviceType,
                                         const int& channel, MotionDetectionAbility& ability);

    // What the pan, tilt and zoom drive can do. An exchange, or Failed (-1) for the device type.
    static int getPTZAbility(const long& handle, const int& deviceType, const int& channel,
                             PTZAbilityParam& ability);

    // What the image sensor can do. Cameras only; the channel is ignored. An exchange, or Failed
    // (-1) for the device type.
    static int getSensorAbility(const long& handle, const int& deviceType, const int& channel,
                                SensorAbility& ability);

    // All channels of a recorder. Recorders only. An exchange, or Failed (-1) for the device type.
    // Channels beyond the capacity are left out.
    static int getAllChannelInfo(const long& handle, const int& deviceType,
                                 NS_TARN_STRUCT::tagAllChannelInfo& channels);

    // One channel of a recorder: the first that it answers with. Recorders only. An exchange,
    // EmptyChannelList (-16) when it answers with none, or Failed (-1) for the device type.
    static int getChannelInfo(const long& handle, const int& deviceType, int channel,
                              ChannelInfo& info);

    // ---- Live preview

    // Shows the live picture of a device in a window until the library is unloaded. No session is
    // needed: this goes through two libraries of the devices' maker, `libTarnNetSDK.so` and
    // `libTarnPlayerSDK.so`, which are looked for by name when this is first called.
    //
    // `window` is the native handle of the window, `device` the login data as the video library
    // defines it. `channel` and `stream` are ignored: it is always stream 1 of channel 1. A second
    // call does not end the first picture.
    //
    // Success (0); PreviewFailed (-12) when one of the libraries is missing or lacks a function, in
    // which case nothing was started, or when the video could not be started; any other number
    // comes from these libraries.
    static int startPlay(const long& window, const int& channel, const int& stream,
                         const NS_TARN_STRUCT::tagDeviceInfoEx& device);

    // Does nothing and gives Success; the picture goes on until the library is unloaded.
    static int stopPlay();
};
