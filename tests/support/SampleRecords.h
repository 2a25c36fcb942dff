// Records with content, for requests and answers.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "domain/ChannelId.h"
#include "domain/DomainVectorContainer.h"
#include "protocol/BodyParserFactory.h"
#include "protocol/CredentialCipher.h"
#include "support/RecordFiller.h"
#include "support/WireBytes.h"

// A record in which no field has the value that it starts with.
template <class Record>
Record sample() {
    Record record;
    RecordFiller().fill(Record::descriptor(), &record);
    return record;
}

// A record in which these setters alone were called, each of which stands in front of its value.
template <class Record, class Value, class... More>
Record with(void (Record::*set)(Value), std::remove_cvref_t<Value> value, More&&... more) {
    Record record;
    if constexpr (sizeof...(more) > 0) {
        record = with(std::forward<More>(more)...);
    }
    (record.*set)(std::move(value));
    return record;
}

template <class Record>
DomainVectorContainer<Record> listOf(std::vector<Record> vecElements) {
    return DomainVectorContainer<Record>(std::move(vecElements));
}

// The records of a request that leads with a channel, as nearly all do.
template <class... Record>
Records onChannel(int nChannel, const Record&... record) {
    return recordsOf(with(&ChannelId::setId, nChannel), record...);
}

// A body with these records.
inline std::string bodyOf(const Records& records) {
    CommandBuffer buffer;
    EXPECT_TRUE(createBodyParser(10000)->createCommandBody(records, buffer));
    return bytesOf(buffer);
}

inline std::string enciphered(const std::string& strPlain) {
    std::string strCipher;
    EXPECT_TRUE(encryptText(strPlain, strCipher));
    return strCipher;
}
