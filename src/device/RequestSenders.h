// One exchange each: typed request records in, the typed answer out.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Product/Technic/ErrorCode.h"
#include "domain/DomainVectorContainer.h"
#include "session/SDKSession.h"
#include "session/SessionCommands.h"

// Request records travel as copies, in the order of the arguments; a vector travels, and is
// answered, as one list record. NoTransport without a session, BadReply when the reply lacks the
// answer, else the code of the exchange. The answer is assigned on Success only.

template <class Record>
SafePointer<BaseDomain> requestRecord(const Record& record) {
    return copyOf(record);
}

template <class Element>
SafePointer<BaseDomain> requestRecord(const std::vector<Element>& vecElements) {
    return copyOf(DomainVectorContainer<Element>(vecElements));
}

template <class Record>
bool takeAnswer(const DomainList& reply, Record& answer) {
    return findRecord(Record::DomainId, 0, reply, answer);
}

template <class Element>
bool takeAnswer(const DomainList& reply, std::vector<Element>& vecAnswer) {
    DomainVectorContainer<Element> container;
    if (!findRecord(ContainerDomainId, Element::DomainId, reply, container)) {
        return false;
    }
    vecAnswer = std::move(container.getElements());
    return true;
}

template <class... Request>
int sendRequest(const SafePointer<SDKSession>& session, std::uint32_t nCommandId, DomainList& reply,
                const Request&... request) {
    return session.isNull() ? ErrorCode::NoTransport
                            : session->sendRecv(nCommandId, {requestRecord(request)...}, reply);
}

// Of the reply only the code matters.
template <class... Request>
int sendSet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
            const Request&... request) {
    DomainList reply;
    return sendRequest(session, nCommandId, reply, request...);
}

// `answer` is a record, or a vector of them.
template <class Answer, class... Request>
int sendGet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId, Answer& answer,
            const Request&... request) {
    DomainList reply;
    const int nCode = sendRequest(session, nCommandId, reply, request...);
    if (nCode != ErrorCode::Success) {
        return nCode;
    }
    return takeAnswer(reply, answer) ? ErrorCode::Success : ErrorCode::BadReply;
}
