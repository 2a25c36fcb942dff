// FieldAssignment: one FIELD=VALUE of the command line.
//
// FIELD is a path with dots: fields by name, elements of a list by number, counted from 0; the
// number behind the last element appends one. VALUE is the text itself for a text, and JSON
// otherwise. An empty FIELD stands for the whole value.
#pragma once

#include <string>
#include <vector>

#include "RecordJson.h"

struct FieldAssignment {
    std::vector<std::string> vecPath;
    Json value;
};

// Checked against the shape as far as that goes without the present value. UsageError otherwise.
FieldAssignment parseAssignment(const std::string& strText, const Shape& shape,
                                const std::string& strName);

// Changes the value. An object changes the fields that it names, everything else is replaced.
// UsageError for an index beyond the end of a list.
void assign(const FieldAssignment& assignment, const Shape& shape, const std::string& strName,
            Json& value);

// UsageError, with the missing ones, unless every field of the record is assigned.
void requireEveryField(const std::vector<FieldAssignment>& vecAssignments,
                       const fleetkit::RecordDescriptor& descriptor, const std::string& strName);
