// EtPTZOperation traces on standard output what it reads and writes, in every run.
#pragma once

#include "domain/BaseDomain.h"
#include "domainxml/XmlCursor.h"

namespace OddXml {

bool createEtPTZOperation(const BaseDomain& record, XmlCursor element);
bool parseEtPTZOperation(XmlCursor element, BaseDomain& record);

}  // namespace OddXml
