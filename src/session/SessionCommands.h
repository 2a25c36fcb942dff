// One exchange each: typed request records in, the typed answer out.
//
// Request records travel as copies, in the order of the arguments; a vector travels, and is
// answered, as one list record. NoTransport without a session, EncodeFailed when there is no memory
// for the copies, BadReply when the reply lacks the answer or there is none for it, else what
// `SDKSession::sendRecv` gives. The answer is assigned on Success only.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "Product/Technic/MemoryGuard.h"
#include "Product/Technic/SafePointer.h"
#include "domain/DomainList.h"
#include "session/SDKSession.h"

// A copy of a record, or of a list of them, as requests carry it.
template <class Record>
SafePointer<BaseDomain> copyOf(const Record& record) {
    return wrapSafe<BaseDomain>(std::make_unique<Record>(record));
}

template <class Element>
SafePointer<BaseDomain> copyOf(const std::vector<Element>& vecElements) {
    return copyOf(DomainVectorContainer<Element>(vecElements));
}

// What answers a get of this type in a reply, or null.
template <class Record>
const Record* findAnswer(const DomainList& reply, const Record&) {
    return findRecord<Record>(reply);
}

template <class Element>
const std::vector<Element>* findAnswer(const DomainList& reply, const std::vector<Element>&) {
    return findList<Element>(reply);
}

template <class... Request>
std::int32_t sendRecords(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                         DomainList& reply, const Request&... request) {
    if (session.isNull()) {
        return fleetkit::ErrorCode::NoTransport;
    }
    DomainList records;
    const bool bRoom = guardMemory([&] {
        records = {copyOf(request)...};
        return true;
    });
    return bRoom ? session->sendRecv(nCommandId, records, reply)
                 : fleetkit::ErrorCode::EncodeFailed;
}

// Of the reply only the code matters.
template <class... Request>
std::int32_t sendSet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                     const Request&... request) {
    DomainList reply;
    return sendRecords(session, nCommandId, reply, request...);
}

// `answer` is a record, or a vector of them.
template <class Answer, class... Request>
std::int32_t sendGet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
                     Answer& answer, const Request&... request) {
    DomainList reply;
    const std::int32_t nCode = sendRecords(session, nCommandId, reply, request...);
    if (nCode != fleetkit::ErrorCode::Success) {
        return nCode;
    }
    const Answer* pAnswer = findAnswer(reply, answer);
    if (pAnswer == nullptr) {
        return fleetkit::ErrorCode::BadReply;
    }
    const bool bTaken = guardMemory([&] {
        answer = Answer(*pAnswer);
        return true;
    });
    return bTaken ? fleetkit::ErrorCode::Success : fleetkit::ErrorCode::DecodeFailed;
}
