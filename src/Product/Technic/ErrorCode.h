// Every result code of this library, by name, with its meaning.
//
// An operation returns 0 for success, a negative code of this list, or the number that the device
// itself put into its answer, passed on unchanged.
#pragma once

#include "Product/Technic/Export.h"

namespace fleetkit {

namespace ErrorCode {

enum Value : int {
    Success = 0,
    Failed = -1,             // no such session, no library instance, or the step itself failed
    NoMemory = -2,           // memory for a transport or for a receive buffer was refused
    UnknownHandle = -3,      // logout of a handle that names no session
    NoTransport = -4,        // no transport, socket or session where one is needed
    PreviewFailed = -12,     // live preview could not be started
    EmptyChannelList = -16,  // the device answered with an empty list of channels
    SocketOpenFailed = -202,
    BindFailed = -203,
    ConnectFailed = -204,  // refused, unreachable or timed out
    ListenFailed = -206,
    AcceptFailed = -207,
    AcceptTimedOut = -208,
    SendFailed = -210,  // also when fewer bytes were sent than the command has
    SendTimedOut = -211,
    ReceiveFailed = -212,  // also when the peer closed
    ReceiveTimedOut = -213,
    ReuseAddrFailed = -215,
    NoTransferFactory = -217,  // the transport kind is not registered
    DecodeFailed = -233,       // what arrived is not a command
    EncodeFailed = -234,
    NothingToRead = -238,
    HeadRefused = -402,
    BadReply = -501,  // a reply was missing, mismatched, or lacked an expected record
    UnknownCommand = -506,
    EmptyStreamList = -513,
    CipherFailed = -663,
};

}  // namespace ErrorCode

// One line of English for a code of this library; for any other number the text says that it is
// the device's own. Never null, never to be freed; callable from any thread.
FLEETKIT_EXPORT const char* errorMeaning(int nCode) noexcept;

}  // namespace fleetkit
