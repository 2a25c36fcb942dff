// Any bytes as a head, and as the answer to an exchange that comes in pieces over a socket.
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "Product/Technic/platform/Clock.h"
#include "fuzz/Fuzz.h"
#include "protocol/CommandParserFactory.h"
#include "session/SDKSession.h"
#include "session/SequenceNumber.h"
#include "session/TCPTransfer.h"
#include "support/ManualClock.h"
#include "support/WireCommands.h"

namespace {

void readHead(const std::string& strBytes) {
    SDKCommandHeadInfo head;
    CommandBuffer written;
    const bool bRead =
        decodeCommandHead(bytesIn(strBytes), static_cast<std::uint32_t>(strBytes.size()), head);
    if (bRead && strBytes.size() >= SDKCommandHeadInfo::WireLength) {
        require(encodeCommandHead(head, written), "what is read can be written");
        SDKCommandHeadInfo again;
        require(decodeCommandHead(written.data(), written.getLength(), again), "and read again");
    }
}

// The answers are there before the question: pieces of the stream, each with a sound head or none.
std::string stream(Input& input, std::uint16_t nSequence) {
    std::string strStream;
    while (!input.isEmpty()) {
        const auto nForm = input.number<std::uint8_t>();
        const std::string strBody = input.text(input.number<std::uint8_t>() * 4U);
        SDKCommandHeadInfo head = headOf(30508, static_cast<std::uint16_t>(nSequence + nForm % 2));
        head.setProtocolType(1);
        head.setPayloadLength(static_cast<std::uint32_t>(strBody.size() + nForm % 3));
        CommandBuffer bytes;
        encodeCommandHead(head, bytes);
        strStream += (nForm < 200 ? bytesOf(bytes) : "") + strBody;
    }
    return strStream;
}

void exchange(Input& input) {
    std::array<int, 2> arrEnds{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, arrEnds.data()) == 0, "sockets");
    const auto pSocket = new Socket(1, Socket::Stream);
    pSocket->setHandle(arrEnds[0]);
    auto pTransfer = std::make_unique<TCPTransfer>(1);
    pTransfer->setSocket(pSocket);
    pTransfer->setCommandHeadParser(createCommandHeadParser(1));
    SDKSession session;
    session.setTransfer(wrapSafe<ITransfer>(std::move(pTransfer)));
    const std::string strStream = stream(input, static_cast<std::uint16_t>(nextSequence() + 1));
    require(
        send(arrEnds[1], strStream.data(), strStream.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0 ||
            strStream.empty(),
        "the stream fits");
    shutdown(arrEnds[1], SHUT_WR);
    DomainList reply;
    session.sendRecv(30507, {}, reply);
    session.sendRecv(30507, {}, reply);
    session.close();
    close(arrEnds[1]);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nLength) {
    static ManualClock clock;
    static const ScopedClock inPlace(clock);
    readHead(std::string(reinterpret_cast<const char*>(pBytes), nLength));
    Input input(pBytes, nLength);
    exchange(input);
    return 0;
}
