// Any record as JSON and back, by its descriptor: fields by their wire names, nested records as
// objects, lists of every kind as arrays, blocks as base64 or null.
#pragma once

#include <fleetkit/domain/RecordDescriptor.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

using Json = nlohmann::ordered_json;

// What stands at one place of a value: a single thing or a list of them, and of which kind.
struct Shape {
    bool isList = false;
    const fleetkit::RecordDescriptor* pRecord = nullptr;  // null: a scalar
    fleetkit::FieldKind nScalar = fleetkit::FieldKind::Int;

    // What an element of a list is.
    Shape element() const noexcept { return {false, pRecord, nScalar}; }
};

// A value of a known shape, held for its owner: a record, or a std::vector of records.
struct Value {
    Shape shape;
    std::shared_ptr<void> pObject;
};

// Calls with each field that has a place in JSON, those of the base first.
void forEachField(const fleetkit::RecordDescriptor& descriptor,
                  const std::function<void(const fleetkit::FieldDescriptor&)>& visit);

Shape shapeOf(const fleetkit::FieldDescriptor& field) noexcept;

// For people: "a whole number from 0 to 65535".
std::string describeShape(const Shape& shape);

// The dotted path one step down; an empty path is the top.
std::string pathBelow(const std::string& strPath, const std::string& strStep);

// The shape one step down a dotted path: a field of a record, an index of a list. UsageError, with
// the valid ones, for a step that leads nowhere. strPath is the way so far, for its text.
Shape shapeBelow(const Shape& shape, const std::string& strStep, const std::string& strPath);

Json toJson(const Shape& shape, const void* pObject);

// UsageError if the JSON does not have the shape: another type, a number out of range, a field that
// does not exist. Absent fields are fine.
void checkJson(const Json& json, const Shape& shape, const std::string& strPath);

// Takes JSON over that checkJson() let pass. A field that is absent keeps what it has; lists are
// replaced.
void fromJson(const Json& json, const Shape& shape, void* pObject);
