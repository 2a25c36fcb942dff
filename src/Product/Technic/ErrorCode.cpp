// The meanings of the result codes.
#include "Product/Technic/ErrorCode.h"

namespace fleetkit {

const char* errorMeaning(int nCode) noexcept {
    // No default branch: the compiler tells when a code has no meaning yet.
    switch (static_cast<ErrorCode::Value>(nCode)) {
        case ErrorCode::Success:
            return "success";
        case ErrorCode::Failed:
            return "the handle names no session, or the operation failed";
        case ErrorCode::NoMemory:
            return "no memory for a transport or a receive buffer";
        case ErrorCode::UnknownHandle:
            return "the handle names no session";
        case ErrorCode::NoTransport:
            return "no connection where one is needed";
        case ErrorCode::PreviewFailed:
            return "live preview could not be started";
        case ErrorCode::EmptyChannelList:
            return "the device answered with an empty list of channels";
        case ErrorCode::SocketOpenFailed:
            return "a socket could not be opened";
        case ErrorCode::BindFailed:
            return "binding to the local address failed";
        case ErrorCode::ConnectFailed:
            return "connecting failed or timed out";
        case ErrorCode::ListenFailed:
            return "listening failed";
        case ErrorCode::AcceptFailed:
            return "accepting a connection failed";
        case ErrorCode::AcceptTimedOut:
            return "no connection arrived in time";
        case ErrorCode::SendFailed:
            return "sending failed or was cut short";
        case ErrorCode::SendTimedOut:
            return "sending timed out";
        case ErrorCode::ReceiveFailed:
            return "receiving failed or the device closed the connection";
        case ErrorCode::ReceiveTimedOut:
            return "the device did not answer in time";
        case ErrorCode::ReuseAddrFailed:
            return "the address could not be marked for reuse";
        case ErrorCode::NoTransferFactory:
            return "the transport kind is not known";
        case ErrorCode::DecodeFailed:
            return "the answer could not be decoded";
        case ErrorCode::EncodeFailed:
            return "the command could not be encoded";
        case ErrorCode::NothingToRead:
            return "nothing to read";
        case ErrorCode::HeadRefused:
            return "the head of the answer was refused";
        case ErrorCode::BadReply:
            return "the answer was missing, mismatched or incomplete";
        case ErrorCode::UnknownCommand:
            return "the command is not in the catalogue";
        case ErrorCode::EmptyStreamList:
            return "the device answered with an empty list of streams";
        case ErrorCode::CipherFailed:
            return "the user name or password could not be enciphered";
    }
    return "the device's own result code";
}

}  // namespace fleetkit
