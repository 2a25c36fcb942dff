// Runs a target over what it has found, and over its seeds, as they are and damaged in a hundred
// ways, as an ordinary test. The damage is the same in every run.
#include <cstdio>
#include <filesystem>
#include <random>

#include "fuzz/Fuzz.h"
#include "support/TempDir.h"

namespace {

constexpr int Rounds = 100;

// Bytes at which lengths, texts and markup turn.
const std::string TellingBytes("\0\x01\x7F\x80\xFF<>\"'&=/![]-?; \n\xC3", 21);

// Cuts bytes out, puts telling ones in, and repeats others.
class Damage {
public:
    std::string done(std::string strBytes) {
        for (std::size_t nLeft = 1 + below(4); nLeft > 0; --nLeft) {
            const std::size_t nAt = below(strBytes.size() + 1);
            const std::size_t arrRemoved[] = {0, 1, below(12), std::string::npos};
            const std::string arrInserted[] = {
                "", {TellingBytes[below(TellingBytes.size())]}, strBytes.substr(nAt, below(96))};
            const std::size_t nRemoved = arrRemoved[below(4)];
            strBytes.replace(nAt, nRemoved, arrInserted[below(3)]);
        }
        return strBytes;
    }

private:
    std::size_t below(std::size_t nLimit) { return m_random() % nLimit; }

    std::mt19937 m_random{4711};
};

void runTarget(const std::string& strBytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(strBytes.data()), strBytes.size());
}

}  // namespace

int main(int nCount, char** pArguments) {
    int nFiles = 0;
    // What the library prints of bad records is of no interest.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) {
        return 1;
    }
    for (int n = 1; n < nCount; ++n) {
        if (!std::filesystem::exists(pArguments[n])) {
            continue;  // nothing was found
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(pArguments[n])) {
            if (entry.is_regular_file()) {
                std::fprintf(stderr, "%s\n", entry.path().c_str());
                const std::string strBytes = readFile(entry.path().string());
                runTarget(strBytes);
                Damage damage;
                for (int nRound = 0; nRound < Rounds; ++nRound) {
                    runTarget(damage.done(strBytes));
                }
                ++nFiles;
            }
        }
    }
    return nFiles > 0 ? 0 : 1;
}
