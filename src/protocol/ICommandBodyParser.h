// Bodies of commands: a sequence of domain records as bytes, and back.
#pragma once

#include "domain/DomainList.h"
#include "protocol/CommandBuffer.h"

// One form of body, both directions. Stateless in use: made for one command and dropped with it.
class ICommandBodyParser {
public:
    virtual ~ICommandBodyParser() = default;

    // Writes the body into `out`. False when a record that the form needs is missing or cannot be
    // written. An empty pointer among the records raises the error of an empty pointer.
    virtual bool createCommandBody(const DomainList& domains, CommandBuffer& out) const = 0;

    // Appends the records of a body to `domains`. `in` holds the payload only, with a zero byte
    // after its end. False, with `domains` as far as it was filled, for anything that is not such a
    // body, and when memory or safe pointers run out. No content raises an exception.
    virtual bool parseCommandBody(const CommandBuffer& in, DomainList& domains) const = 0;
};
