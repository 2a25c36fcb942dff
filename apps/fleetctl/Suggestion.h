// What a word that is not known might have been meant to be.
#pragma once

#include <string>
#include <vector>

// "; did you mean 'ntp'?" when one of the words is near, and else all of them: "; the names are:
// ntp time".
std::string suggest(const std::string& strWord, const std::string& strWhatWordsAre,
                    const std::vector<std::string>& vecWords);

// The nearest of the words, however written in capitals; empty when none is near.
std::string nearestWord(const std::string& strWord, const std::vector<std::string>& vecWords);
