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
// answered, as one list record. BadReply when the reply lacks the answer, else the code of the
// exchange. The answer is assigned on Success only.

template <class Record>
const Record& asRecord(const Record& record) {
    return record;
}

template <class Element>
DomainVectorContainer<Element> asRecord(const std::vector<Element>& vecElements) {
    return DomainVectorContainer<Element>(vecElements);
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

// Of the reply only the code matters.
template <class... Request>
int sendSet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId,
            const Request&... request) {
    DomainList reply;
    return sendRecords(session, nCommandId, reply, asRecord(request)...);
}

// `answer` is a record, or a vector of them.
template <class Answer, class... Request>
int sendGet(const SafePointer<SDKSession>& session, std::uint32_t nCommandId, Answer& answer,
            const Request&... request) {
    DomainList reply;
    const int nCode = sendRecords(session, nCommandId, reply, asRecord(request)...);
    if (nCode != fleetkit::ErrorCode::Success) {
        return nCode;
    }
    return takeAnswer(reply, answer) ? fleetkit::ErrorCode::Success : fleetkit::ErrorCode::BadReply;
}
