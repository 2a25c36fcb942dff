// A command whose payload is a number and raw bytes.
#pragma once

#include <cstdint>
#include <memory>

#include "protocol/CommandParam.h"
#include "protocol/SDKCommandHeadInfo.h"

// Head, sub-command number and data. Starts with a zeroed block of `SmallBlock` bytes, so that
// small data needs no second allocation. Protocol type and payload length of the head are set by
// encoding.
class BinCommandParam : public CommandParam {
public:
    static constexpr std::int32_t SmallBlock = 1024;

    BinCommandParam();

    const SDKCommandHeadInfo& getHead() const noexcept { return m_headInfo; }
    void setHead(const SDKCommandHeadInfo& head) noexcept { m_headInfo = head; }

    std::int32_t getBinCommandId() const noexcept { return m_nBinCommandId; }  // -1 at first
    void setBinCommandId(std::int32_t nId) noexcept { m_nBinCommandId = nId; }

    // Copies `size` bytes; more than `SmallBlock` get a new block of exactly that size. Without
    // memory for it the data is gone and `getData` is null. A negative size, and a null
    // source of any bytes, change nothing.
    void setData(const std::uint8_t* data, std::int32_t size);

    const std::uint8_t* getData() const noexcept { return m_pData.get(); }
    std::uint32_t getDataLength() const noexcept { return m_nDataLength; }

private:
    std::int32_t m_nBinCommandId = -1;
    std::uint32_t m_nDataLength = 0;
    std::unique_ptr<std::uint8_t[]> m_pData;
    SDKCommandHeadInfo m_headInfo;
};
