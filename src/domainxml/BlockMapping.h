// BlockMapping: a block of bytes in one attribute, in base64, beside a field with its length.
#pragma once

#include "domain/RecordDescriptor.h"
#include "domainxml/XmlCursor.h"

namespace BlockMapping {

// A record that never got a block writes no attribute.
bool write(const fleetkit::FieldDescriptor& field, const void* pRecord, XmlCursor element);
// False for a text that is no base64, or that is longer than the length told allows.
bool read(const fleetkit::FieldDescriptor& field, XmlCursor element, void* pRecord);

}  // namespace BlockMapping
