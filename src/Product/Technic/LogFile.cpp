// Mode words and the few calls on a file stream.
#include "Product/Technic/LogFile.h"

namespace {

// The stream's mode for a mode word; null for a word that is refused.
const char* streamMode(unsigned nMode) noexcept {
    const bool bTruncate = (nMode & LogFile::Truncate) != 0;
    switch (nMode & (LogFile::Read | LogFile::Append | LogFile::Update)) {
        case LogFile::Read:
            return "rb";
        case LogFile::Append:
            return bTruncate ? "wb" : "ab";
        case LogFile::Update:
            if ((nMode & LogFile::Create) == 0) {
                return "r+b";
            }
            return bTruncate ? "w+b" : "a+b";
        default:
            return nullptr;
    }
}

}  // namespace

bool LogFile::open(const std::string& strPath, unsigned nMode) {
    const char* pMode = streamMode(nMode);
    m_pStream.reset(pMode == nullptr ? nullptr : std::fopen(strPath.c_str(), pMode));
    return m_pStream != nullptr;
}

bool LogFile::flush() {
    return m_pStream && std::fflush(m_pStream.get()) == 0;
}

std::size_t LogFile::write(const std::string& strText) {
    return m_pStream ? std::fwrite(strText.data(), 1, strText.size(), m_pStream.get()) : 0;
}

std::int32_t LogFile::getLength() {
    if (!m_pStream || std::fseek(m_pStream.get(), 0, SEEK_END) != 0) {
        return -1;
    }
    return static_cast<std::int32_t>(std::ftell(m_pStream.get()));
}
