// What the vocabulary tells of each record and each command. The table is generated from the facts
// that the pages of the reference are made of.
#pragma once

#include <cstddef>

struct VocabularyEntry {
    const char* szNames;  // those that find it, with a blank between
    const char* szJson;   // one object, in one line
};

extern const VocabularyEntry vocabularyEntries[];
extern const std::size_t vocabularySize;
