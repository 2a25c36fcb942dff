// A command as it arrived, and the look-ups that its handler needs.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "Product/Technic/SafePointer.h"
#include "domain/ChannelId.h"
#include "domain/DomainVectorContainer.h"
#include "protocol/SDKCommandHeadInfo.h"

using Records = std::vector<SafePointer<BaseDomain>>;

// The first record of this type, or null.
inline const BaseDomain* findRecordOfType(const Records& vecRecords, std::uint32_t nDomainId) {
    for (const auto& record : vecRecords) {
        if (record->getDomainId() == nDomainId) {
            return record.get();
        }
    }
    return nullptr;
}

template <class T>
const T* findRecord(const Records& vecRecords) {
    return static_cast<const T*>(findRecordOfType(vecRecords, T::DomainId));
}

// The elements of the first list of this type, or null.
template <class T>
const std::vector<T>* findList(const Records& vecRecords) {
    for (const auto& record : vecRecords) {
        bool bIsList = false;
        if (checkDomainId(*record, T::DomainId, bIsList) && bIsList) {
            return &static_cast<const DomainVectorContainer<T>*>(record.get())->getElements();
        }
    }
    return nullptr;
}

template <class T>
void appendRecord(Records& vecRecords, T record) {
    vecRecords.push_back(wrapSafe<BaseDomain>(std::make_unique<T>(std::move(record))));
}

template <class T>
void appendList(Records& vecRecords, std::vector<T> vecElements) {
    appendRecord(vecRecords, DomainVectorContainer<T>(std::move(vecElements)));
}

struct Request {
    static constexpr int All = -1;  // as a channel or a stream

    SDKCommandHeadInfo head;
    Records vecRecords;

    // The channel that the request is about.
    int channel() const {
        const auto* pChannelId = findRecord<ChannelId>(vecRecords);
        return pChannelId ? pChannelId->getId() : All;
    }
};
