// Lets the calls fail that can: allocations, and those of the system, which the linker leads here.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// While it lives, the call of this name that comes as number `nFailing`, counted from 0 over all
// threads, fails; "new" is an allocation.
class Failing {
public:
    Failing(const std::string& strCall, int nFailing);
    ~Failing();
    Failing(const Failing&) = delete;
    Failing& operator=(const Failing&) = delete;

    bool hasFailed() const;
};

// While it lives, what goes through sockets at once is no larger than these sizes, one after the
// other and again from the first.
class Pieces {
public:
    explicit Pieces(std::vector<std::size_t> vecSizes);
    ~Pieces();
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

private:
    const std::vector<std::size_t> m_vecSizes;
};
