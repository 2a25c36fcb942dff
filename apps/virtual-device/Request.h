// A command as it arrived, and the look-ups that its handler needs.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "domain/ChannelId.h"
#include "domain/DomainList.h"
#include "protocol/SDKCommandHeadInfo.h"

template <class T>
void appendRecord(DomainList& vecRecords, T record) {
    vecRecords.push_back(wrapSafe<BaseDomain>(std::make_unique<T>(std::move(record))));
}

template <class T>
void appendList(DomainList& vecRecords, std::vector<T> vecElements) {
    appendRecord(vecRecords, DomainVectorContainer<T>(std::move(vecElements)));
}

struct Request {
    static constexpr int All = -1;  // as a channel or a stream

    SDKCommandHeadInfo head;
    DomainList vecRecords;

    // The channel that the request is about.
    int channel() const {
        const auto* pChannelId = findRecord<ChannelId>(vecRecords);
        return pChannelId ? pChannelId->getId() : All;
    }
};
