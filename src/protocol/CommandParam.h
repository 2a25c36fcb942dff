// One command in memory, whatever its kind.
#pragma once

#include <cstdint>

// The base of `SDKCommandParam` and `BinCommandParam`; the protocol type, set by their
// constructors, tells which of them it is.
class CommandParam {
public:
    virtual ~CommandParam() = default;

    std::uint32_t getProtocolType() const noexcept { return m_nProtocolType; }

protected:
    explicit CommandParam(std::uint32_t nProtocolType) noexcept : m_nProtocolType(nProtocolType) {}
    CommandParam(const CommandParam&) = default;
    CommandParam& operator=(const CommandParam&) = default;

private:
    std::uint32_t m_nProtocolType;
};
