// A thin owner of a buffered file stream.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

// One file, closed at the end of the object. Every operation on a closed file fails quietly. Used
// by one thread at a time.
class LogFile {
public:
    enum Mode : unsigned {
        Read = 0x01,    // "rb"
        Append = 0x02,  // "ab", with Truncate "wb"
        Update = 0x04,  // "r+b", with Create "a+b", with Create and Truncate "w+b"
        Create = 0x20,
        Truncate = 0x40,
    };

    // Opens after closing what was open. False when the file cannot be opened, and when the mode
    // word does not have exactly one of Read, Append and Update.
    bool open(const std::string& strPath, unsigned nMode);
    void close() noexcept { m_pStream.reset(); }

    bool flush();
    std::size_t write(const std::string& strText);  // bytes written
    std::int32_t getLength();                       // in bytes; negative on failure

private:
    struct Closer {
        void operator()(std::FILE* pStream) const noexcept { std::fclose(pStream); }
    };

    std::unique_ptr<std::FILE, Closer> m_pStream;
};
