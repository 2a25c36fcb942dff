// DomainXmlFactory: finds mappers by domain id, and maps records of any type by them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "domainxml/IDomainXml.h"

// A new mapper for each type of the vocabulary that may stand at the top of a body; for any other
// id null, and a line in the log at level 3. Null also where there is no memory for it. May be
// called from any thread.
std::unique_ptr<IDomainXml> createDomainXml(std::uint32_t nDomainId);

// Makes a node with this tag and fills it from a record of any type.
bool createDomainXmlNode(const std::string& strTag, const SafePointer<BaseDomain>& record,
                         SafePointer<DomainXmlNode>& node);

// Fills a record of any type from a node, and tells the node's tag.
bool parseDomainXmlNode(const SafePointer<DomainXmlNode>& node, std::string& strTag,
                        const SafePointer<BaseDomain>& record);
