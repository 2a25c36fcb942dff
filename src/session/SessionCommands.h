// Exchanges with one record, and records out of replies.
#pragma once

#include <cstdint>
#include <memory>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/RoomGuard.h"
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
// False, with `out` as it was, when there is none, and when there is no memory for it.
template <class Record>
bool findRecord(std::uint32_t nDomainId, std::uint32_t nElementId, const DomainList& list,
                Record& out) {
    SafePointer<BaseDomain> found;
    if (!findDomain(nDomainId, nElementId, list, found)) {
        return false;
    }
    return guardRoom([&] {
        out = Record(static_cast<const Record&>(*found));
        return true;
    });
}

// One exchange; the request holds copies of these records, in this order. NoTransport without a
// session, EncodeFailed when there is no room for the copies, else what `sendRecv` gives.
template <class... Request>
std::int32_t sendRecords(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                         DomainList& reply, const Request&... request) {
    if (session.isNull()) {
        return fleetkit::ErrorCode::NoTransport;
    }
    DomainList records;
    const bool bRoom = guardRoom([&] {
        records = {copyOf(request)...};
        return true;
    });
    return bRoom ? session->sendRecv(nCommandId, records, reply)
                 : fleetkit::ErrorCode::EncodeFailed;
}

// One exchange whose reply brings nothing but its result code.
template <class Request>
std::int32_t sendRecord(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                        const Request& request) {
    DomainList reply;
    return sendRecords(session, nCommandId, reply, request);
}

// The same, fetching one record of the reply: BadReply when it is missing. `answer` is touched on
// success only.
template <class Request, class Answer>
std::int32_t sendRecord(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                        const Request& request, Answer& answer) {
    DomainList reply;
    const std::int32_t nResult = sendRecords(session, nCommandId, reply, request);
    if (nResult != fleetkit::ErrorCode::Success) {
        return nResult;
    }
    return findRecord(Answer::DomainId, 0, reply, answer) ? fleetkit::ErrorCode::Success
                                                          : fleetkit::ErrorCode::BadReply;
}
