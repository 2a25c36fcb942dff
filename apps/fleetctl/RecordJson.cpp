// Walks records and JSON side by side.
#include "RecordJson.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <vector>

#include "Base64Text.h"
#include "UsageError.h"

using namespace fleetkit;

namespace {

// The shortest decimal that reads back as the same float, so that 0.1 stays 0.1.
double decimalOf(float fValue) {
    std::array<char, 64> arrText{};
    std::to_chars(arrText.data(), arrText.data() + arrText.size() - 1, fValue);
    return std::strtod(arrText.data(), nullptr);
}

template <class T>
T& as(void* pObject) {
    return *static_cast<T*>(pObject);
}
template <class T>
const T& as(const void* pObject) {
    return *static_cast<const T*>(pObject);
}

Json scalarToJson(FieldKind nKind, const void* pObject) {
    switch (nKind) {
        case FieldKind::Bool:
            return as<bool>(pObject);
        case FieldKind::UnsignedShort:
            return as<unsigned short>(pObject);
        case FieldKind::Float:
            return decimalOf(as<float>(pObject));
        case FieldKind::Double:
            return as<double>(pObject);
        case FieldKind::String:
            return as<std::string>(pObject);
        case FieldKind::Block: {
            const auto& block = as<OptionalBlock>(pObject);
            return block ? Json(toBase64(*block)) : Json(nullptr);
        }
        default:
            return as<int>(pObject);
    }
}

void scalarFromJson(const Json& json, FieldKind nKind, void* pObject) {
    switch (nKind) {
        case FieldKind::Bool:
            as<bool>(pObject) = json.get<bool>();
            return;
        case FieldKind::UnsignedShort:
            as<unsigned short>(pObject) = json.get<unsigned short>();
            return;
        case FieldKind::Float:
            as<float>(pObject) = json.get<float>();
            return;
        case FieldKind::Double:
            as<double>(pObject) = json.get<double>();
            return;
        case FieldKind::String:
            as<std::string>(pObject) = json.get<std::string>();
            return;
        case FieldKind::Block:
            as<OptionalBlock>(pObject) =
                json.is_null() ? OptionalBlock() : fromBase64(json.get<std::string>());
            return;
        default:
            as<int>(pObject) = json.get<int>();
    }
}

bool fits(const Json& json, std::int64_t nLeast, std::int64_t nMost) {
    if (json.is_number_unsigned()) {
        return json.get<std::uint64_t>() <= static_cast<std::uint64_t>(nMost);
    }
    return json.is_number_integer() && json.get<std::int64_t>() >= nLeast &&
           json.get<std::int64_t>() <= nMost;
}

template <class T>
bool fits(const Json& json) {
    return fits(json, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
}

bool isScalar(const Json& json, FieldKind nKind) {
    switch (nKind) {
        case FieldKind::Bool:
            return json.is_boolean();
        case FieldKind::UnsignedShort:
            return fits<unsigned short>(json);
        case FieldKind::Float:
        case FieldKind::Double:
            return json.is_number();
        case FieldKind::String:
            return json.is_string();
        case FieldKind::Block:
            return json.is_null() || (json.is_string() && fromBase64(json.get<std::string>()));
        default:
            return fits<int>(json);
    }
}

std::string describeScalar(FieldKind nKind) {
    switch (nKind) {
        case FieldKind::Bool:
            return "true or false";
        case FieldKind::UnsignedShort:
            return "a whole number from 0 to 65535";
        case FieldKind::Float:
        case FieldKind::Double:
            return "a number";
        case FieldKind::String:
            return "a text";
        case FieldKind::Block:
            return "base64";
        default:
            return "a whole number from -2147483648 to 2147483647";
    }
}

std::string printable(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The member that holds the field in the object of its record.
const void* memberOfField(const FieldDescriptor& field, const void* pObject) {
    return &memberOf<char>(pObject, field.nOffset);
}
void* memberOfField(const FieldDescriptor& field, void* pObject) {
    return &memberOf<char>(pObject, field.nOffset);
}

const FieldDescriptor* findField(const RecordDescriptor& descriptor, const std::string& strName) {
    const FieldDescriptor* pFound = nullptr;
    forEachField(descriptor, [&](const FieldDescriptor& field) {
        if (pFound == nullptr && strName == field.szTag) {
            pFound = &field;
        }
    });
    return pFound;
}

const FieldDescriptor& fieldOf(const RecordDescriptor& descriptor, const std::string& strName,
                               const std::string& strPath) {
    const FieldDescriptor* pField = findField(descriptor, strName);
    if (pField != nullptr) {
        return *pField;
    }
    std::string strNames;
    forEachField(descriptor,
                 [&](const FieldDescriptor& field) { strNames += std::string(" ") + field.szTag; });
    throw UsageError(strPath + " has no field '" + strName +
                     "'; its fields are:" + (strNames.empty() ? " none" : strNames));
}

Json scalarListToJson(FieldKind nKind, const void* pObject) {
    return nKind == FieldKind::String ? Json(as<std::vector<std::string>>(pObject))
                                      : Json(as<std::vector<int>>(pObject));
}

void listFromJson(const Json& json, const Shape& shape, void* pObject) {
    if (shape.pRecord == nullptr) {
        if (shape.nScalar == FieldKind::String) {
            as<std::vector<std::string>>(pObject) = json.get<std::vector<std::string>>();
        } else {
            as<std::vector<int>>(pObject) = json.get<std::vector<int>>();
        }
        return;
    }
    const TypeAccess& access = shape.pRecord->access;
    access.listReset(pObject, json.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        fromJson(json[i], shape.element(), access.listElement(pObject, i));
    }
}

}  // namespace

void forEachField(const RecordDescriptor& descriptor,
                  const std::function<void(const FieldDescriptor&)>& visit) {
    if (descriptor.base != nullptr) {
        forEachField(descriptor.base(), visit);
    }
    for (const FieldDescriptor& field : descriptor) {
        if (!field.has(ReadOnly)) {  // a second name on the wire of a field that stands elsewhere
            visit(field);
        }
    }
}

Shape shapeOf(const FieldDescriptor& field) noexcept {
    switch (field.nKind) {
        case FieldKind::Record:
        case FieldKind::Element:
            return {false, &field.nested(), field.nKind};
        case FieldKind::RecordList:
        case FieldKind::ElementList:
        case FieldKind::JoinedRecords:
            return {true, &field.nested(), field.nKind};
        case FieldKind::IntList:
        case FieldKind::JoinedInts:
            return {true, nullptr, FieldKind::Int};
        case FieldKind::StringList:
            return {true, nullptr, FieldKind::String};
        default:
            return {false, nullptr, field.nKind};
    }
}

std::string describeShape(const Shape& shape) {
    if (shape.isList) {
        return "a list in JSON";
    }
    return shape.pRecord != nullptr ? "an object in JSON" : describeScalar(shape.nScalar);
}

std::string pathBelow(const std::string& strPath, const std::string& strStep) {
    return strPath.empty() ? strStep : strPath + '.' + strStep;
}

Shape shapeBelow(const Shape& shape, const std::string& strStep, const std::string& strPath) {
    if (shape.isList) {
        if (strStep.empty() || strStep.find_first_not_of("0123456789") != std::string::npos) {
            throw UsageError(strPath + " is a list: '" + strStep +
                             "' has to be the number of an element, the first is 0");
        }
        return shape.element();
    }
    if (shape.pRecord == nullptr) {
        throw UsageError(strPath + " is " + describeShape(shape) + " and has no fields");
    }
    return shapeOf(fieldOf(*shape.pRecord, strStep, strPath));
}

Json toJson(const Shape& shape, const void* pObject) {
    if (shape.pRecord == nullptr) {
        return shape.isList ? scalarListToJson(shape.nScalar, pObject)
                            : scalarToJson(shape.nScalar, pObject);
    }
    if (shape.isList) {
        const TypeAccess& access = shape.pRecord->access;
        Json json = Json::array();
        for (std::size_t i = 0; i < access.listSize(pObject); ++i) {
            json.push_back(toJson(shape.element(), access.listAt(pObject, i)));
        }
        return json;
    }
    Json json = Json::object();
    forEachField(*shape.pRecord, [&](const FieldDescriptor& field) {
        json[field.szTag] = toJson(shapeOf(field), memberOfField(field, pObject));
    });
    return json;
}

void checkJson(const Json& json, const Shape& shape, const std::string& strPath) {
    const bool bFits = shape.isList               ? json.is_array()
                       : shape.pRecord != nullptr ? json.is_object()
                                                  : isScalar(json, shape.nScalar);
    if (!bFits) {
        throw UsageError(strPath + " takes " + describeShape(shape) + ", not " + printable(json));
    }
    if (shape.isList) {
        for (std::size_t i = 0; i < json.size(); ++i) {
            checkJson(json[i], shape.element(), pathBelow(strPath, std::to_string(i)));
        }
    } else if (shape.pRecord != nullptr) {
        for (const auto& [strName, value] : json.items()) {
            checkJson(value, shapeBelow(shape, strName, strPath), pathBelow(strPath, strName));
        }
    }
}

void fromJson(const Json& json, const Shape& shape, void* pObject) {
    if (shape.isList) {
        listFromJson(json, shape, pObject);
        return;
    }
    if (shape.pRecord == nullptr) {
        scalarFromJson(json, shape.nScalar, pObject);
        return;
    }
    for (const auto& [strName, value] : json.items()) {
        if (const FieldDescriptor* pField = findField(*shape.pRecord, strName)) {
            fromJson(value, shapeOf(*pField), memberOfField(*pField, pObject));
        }
    }
}
