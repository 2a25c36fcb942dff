// Lets the calls fail that can: allocations, and those of the system, which the linker leads here.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The calls, by name; "new" is an allocation.
std::vector<std::string> fallibleCalls();

// While it lives, the call of this name that comes as number `nFailing`, counted from 0 over all
// threads, fails.
class Failing {
public:
    Failing(const std::string& strCall, int nFailing);
    ~Failing();
    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;

    bool hasFailed() const;
};

// While it lives, at most so many bytes go through a socket at once; the first may take more.
class Pieces {
public:
    Pieces(std::size_t nFirst, std::size_t nBytes);
    ~Pieces();
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;
};
