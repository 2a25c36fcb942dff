// A command whose payload is a sequence of domain records.
#pragma once

#include <utility>

#include "domain/DomainList.h"
#include "protocol/CommandParam.h"
#include "protocol/ProtocolType.h"
#include "protocol/SDKCommandHeadInfo.h"

// Head and records, in order. The records are shared with whoever holds their pointers, and outlive
// the command for as long as somebody does. Protocol type and payload length of the head are what
// the caller left there; encoding sets its own.
class SDKCommandParam : public CommandParam {
public:
    SDKCommandParam() noexcept : CommandParam(ProtocolType::SDK) {}

    const SDKCommandHeadInfo& getHead() const noexcept { return m_headInfo; }
    void setHead(const SDKCommandHeadInfo& head) noexcept { m_headInfo = head; }

    const DomainList& getDomains() const noexcept { return m_vecDomains; }
    void setDomains(DomainList domains) { m_vecDomains = std::move(domains); }

private:
    SDKCommandHeadInfo m_headInfo;
    DomainList m_vecDomains;
};
