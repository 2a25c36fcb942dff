// Exchanges with one record, and records out of replies.
#pragma once

#include <cstdint>
#include <memory>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/SafePointer.h"
#include "protocol/ICommandBodyParser.h"
#include "session/SDKSession.h"

// A copy of a record, as requests carry it.
template <class Record>
SafePointer<BaseDomain> copyOf(const Record& record) {
    return wrapSafe<BaseDomain>(std::make_unique<Record>(record));
}

// Assigns the first record with that domain id to `out`, which has to be of the type that the id
// names. A list has the domain id `ContainerDomainId`, and its element type's id in `nElementId`.
// False, with `out` as it was, when there is none.
template <class Record>
bool findRecord(std::uint32_t nDomainId, std::uint32_t nElementId, const DomainList& list,
                Record& out) {
    SafePointer<BaseDomain> found;
    if (!findDomain(nDomainId, nElementId, list, found)) {
        return false;
    }
    out = static_cast<const Record&>(*found);
    return true;
}

// One exchange whose reply brings nothing but its result code. NoTransport without a session.
template <class Request>
std::int32_t sendRecord(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                        const Request& request) {
    if (session.isNull()) {
        return ErrorCode::NoTransport;
    }
    DomainList reply;
    return session->sendRecv(nCommandId, {copyOf(request)}, reply);
}

// The same, fetching one record of the reply: BadReply when it is missing. `answer` is touched on
// success only.
template <class Request, class Answer>
std::int32_t sendRecord(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                        const Request& request, Answer& answer) {
    if (session.isNull()) {
        return ErrorCode::NoTransport;
    }
    DomainList reply;
    const std::int32_t nResult = session->sendRecv(nCommandId, {copyOf(request)}, reply);
    if (nResult != ErrorCode::Success) {
        return nResult;
    }
    return findRecord(Answer::DomainId, 0, reply, answer) ? ErrorCode::Success
                                                          : ErrorCode::BadReply;
}
