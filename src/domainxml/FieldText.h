// FieldText: a field that is one attribute, as text and back: a scalar, or a joined list.
#pragma once

#include <string>

#include "domain/RecordDescriptor.h"

namespace FieldText {

std::string of(const fleetkit::FieldDescriptor& field, const void* pMember);
// A text that is no value of the field's type leaves the member as it was.
void read(const fleetkit::FieldDescriptor& field, const char* szText, void* pMember);
// To zero, false or empty.
void clear(const fleetkit::FieldDescriptor& field, void* pMember);

}  // namespace FieldText
