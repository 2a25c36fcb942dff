// Runs a target over what it has found, and over its seeds, as an ordinary test.
#include <cstdio>
#include <filesystem>

#include "fuzz/Fuzz.h"
#include "support/TempDir.h"

int main(int nCount, char** pArguments) {
    int nRuns = 0;
    for (int n = 1; n < nCount; ++n) {
        if (!std::filesystem::exists(pArguments[n])) {
            continue;  // nothing was found
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(pArguments[n])) {
            if (entry.is_regular_file()) {
                const std::string strBytes = readFile(entry.path().string());
                LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                                       strBytes.size());
                ++nRuns;
            }
        }
    }
    std::fprintf(stderr, "%d inputs\n", nRuns);
    return nRuns > 0 ? 0 : 1;
}
