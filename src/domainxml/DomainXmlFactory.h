// DomainXmlFactory: finds mappers by domain id.
#pragma once

#include <cstdint>
#include <memory>

#include "domainxml/IDomainXml.h"

// A new mapper for each type of the vocabulary that may stand at the top of a body; for any other
// id null, and a line in the log at level 3. Null also where there is no memory for it. May be
// called from any thread.
std::unique_ptr<IDomainXml> createDomainXml(std::uint32_t nDomainId);
