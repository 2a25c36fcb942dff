// XmlMapping: the one engine that maps any record to XML and back, by its descriptor.
//
// The mapper classes, the body parser and whatever else must map records call it. Failures are bool
// results; what is missed on reading is told in a line on standard output, or through the log for
// the records that do so.
#pragma once

#include "domain/BaseDomain.h"
#include "domain/RecordDescriptor.h"
#include "domainxml/XmlCursor.h"

namespace XmlMapping {

// One record, or one inline element, on the element that the cursor points to.
bool writeRecord(const fleetkit::RecordDescriptor& descriptor, const void* pRecord,
                 XmlCursor element);
bool readRecord(const fleetkit::RecordDescriptor& descriptor, XmlCursor element, void* pRecord);

// The same by the descriptor alone, for odd mappers, which add to it.
bool writeFields(const fleetkit::RecordDescriptor& descriptor, const void* pRecord,
                 XmlCursor element);
bool readFields(const fleetkit::RecordDescriptor& descriptor, XmlCursor element, void* pRecord);

// A std::vector of records as children of the element. A list with one bad entry is bad as a whole,
// and then empty.
bool writeList(const fleetkit::RecordDescriptor& descriptor, const void* pList, XmlCursor element);
bool readList(const fleetkit::RecordDescriptor& descriptor, XmlCursor element, void* pList);

// A record or a list of records, told apart by the container id. Reading a list leaves the
// container as it was when the list is bad.
bool writeDomain(const fleetkit::RecordDescriptor& descriptor, const BaseDomain& record,
                 XmlCursor element);
bool readDomain(const fleetkit::RecordDescriptor& descriptor, XmlCursor element,
                BaseDomain& record);

}  // namespace XmlMapping
