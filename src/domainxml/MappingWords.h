// The lines that mappers print about what they missed.
#pragma once

#include <string>

#include "domain/RecordDescriptor.h"
#include "domainxml/XmlCursor.h"

namespace MappingWords {

// An attribute of `element` is absent; strValue is what the field is left with.
void printMissing(const fleetkit::RecordDescriptor& owner, const fleetkit::FieldDescriptor& field,
                  XmlCursor element, const std::string& strValue);
// A child element of `parent` is absent, in these words.
void printMissingElement(const fleetkit::RecordDescriptor& owner,
                         const fleetkit::FieldDescriptor& field, const char* szWords,
                         XmlCursor parent);
// The element of a list is absent, its entries are bad, or it could not be written.
void printMissingList(const fleetkit::RecordDescriptor& owner,
                      const fleetkit::FieldDescriptor& field);
void printBadList(const fleetkit::RecordDescriptor& owner, const fleetkit::FieldDescriptor& field);
void printUnwritten(const fleetkit::RecordDescriptor& owner,
                    const fleetkit::FieldDescriptor& field);

}  // namespace MappingWords
