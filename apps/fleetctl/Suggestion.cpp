// Words are near by the number of letters to change, put in, leave out or swap.
#include "Suggestion.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace {

char lower(char cLetter) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(cLetter)));
}

std::size_t distance(const std::string& strFirst, const std::string& strSecond) {
    using Row = std::vector<std::size_t>;
    Row vecBefore;
    Row vecAbove(strSecond.size() + 1);
    std::iota(vecAbove.begin(), vecAbove.end(), std::size_t{0});
    for (std::size_t i = 0; i < strFirst.size(); ++i) {
        Row vecRow{i + 1};
        for (std::size_t j = 0; j < strSecond.size(); ++j) {
            const auto same = [&](std::size_t a, std::size_t b) {
                return lower(strFirst[a]) == lower(strSecond[b]);
            };
            vecRow.push_back(
                std::min({vecAbove[j] + (same(i, j) ? 0 : 1), vecAbove[j + 1] + 1, vecRow[j] + 1}));
            if (i > 0 && j > 0 && same(i, j - 1) && same(i - 1, j)) {
                vecRow[j + 1] = std::min(vecRow[j + 1], vecBefore[j - 1] + 1);
            }
        }
        vecBefore = std::move(vecAbove);
        vecAbove = std::move(vecRow);
    }
    return vecAbove.back();
}

}  // namespace

std::string nearestWord(const std::string& strWord, const std::vector<std::string>& vecWords) {
    // A third of the letters may be wrong: more makes short words meet by chance.
    constexpr std::size_t LongestWord = 60;
    std::size_t nLeast = std::max<std::size_t>(strWord.size() / 3, 1) + 1;
    std::string strNearest;
    if (strWord.size() > LongestWord) {
        return strNearest;
    }
    for (const std::string& strOther : vecWords) {
        const std::size_t nDistance = distance(strWord, strOther);
        if (nDistance < nLeast && nDistance < strOther.size()) {
            nLeast = nDistance;
            strNearest = strOther;
        }
    }
    return strNearest;
}

std::string suggest(const std::string& strWord, const std::string& strWhatWordsAre,
                    const std::vector<std::string>& vecWords) {
    const std::string strNearest = nearestWord(strWord, vecWords);
    if (!strNearest.empty()) {
        return "; did you mean '" + strNearest + "'?";
    }
    std::string strAll = "; the " + strWhatWordsAre + " are:";
    for (const std::string& strOther : vecWords) {
        strAll += ' ' + strOther;
    }
    return strAll;
}
