// What the vocabulary tells of each record and each command: a table that is generated beside the
// pages of the reference, and says the same.
#pragma once

#include <cstddef>

struct VocabularyEntry {
    const char* szNames;  // those that find it, with a blank between
    const char* szJson;   // one object, in one line
};

extern const VocabularyEntry vocabularyEntries[];
extern const std::size_t vocabularySize;
