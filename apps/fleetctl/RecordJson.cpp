// Walks records and JSON side by side.
#include "RecordJson.h"

#include <fleetkit/domain/MemberVisitor.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "Base64Text.h"
#include "Suggestion.h"
#include "UsageError.h"
#include "VisibleText.h"

using namespace fleetkit;

namespace {

// The shortest decimal that reads back as the same float, so that 0.1 stays 0.1.
double decimalOf(float fValue) {
    std::array<char, 64> arrText{};
    std::to_chars(arrText.data(), arrText.data() + arrText.size() - 1, fValue);
    return std::strtod(arrText.data(), nullptr);
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

// What JSON has for each type of a single value: both ways, whether some JSON is one, and words.
template <class T>
struct ScalarJson;

template <>
struct ScalarJson<bool> {
    static constexpr const char* Words = "true or false";
    static bool takes(const Json& json) { return json.is_boolean(); }
    static Json to(bool bValue) { return bValue; }
    static void from(const Json& json, bool& bValue) { bValue = json.get<bool>(); }
};

template <>
struct ScalarJson<int> {
    static constexpr const char* Words = "a whole number from -2147483648 to 2147483647";
    static bool takes(const Json& json) { return fits<int>(json); }
    static Json to(int nValue) { return nValue; }
    static void from(const Json& json, int& nValue) { nValue = json.get<int>(); }
};

template <>
struct ScalarJson<unsigned short> {
    static constexpr const char* Words = "a whole number from 0 to 65535";
    static bool takes(const Json& json) { return fits<unsigned short>(json); }
    static Json to(unsigned short nValue) { return nValue; }
    static void from(const Json& json, unsigned short& nValue) {
        nValue = json.get<unsigned short>();
    }
};

template <>
struct ScalarJson<double> {
    static constexpr const char* Words = "a number";
    static bool takes(const Json& json) { return json.is_number(); }
    static Json to(double dValue) { return dValue; }
    static void from(const Json& json, double& dValue) { dValue = json.get<double>(); }
};

template <>
struct ScalarJson<float> : ScalarJson<double> {
    static Json to(float fValue) { return decimalOf(fValue); }
    static void from(const Json& json, float& fValue) { fValue = json.get<float>(); }
};

template <>
struct ScalarJson<std::string> {
    static constexpr const char* Words = "a text";
    static bool takes(const Json& json) { return json.is_string(); }
    static Json to(const std::string& strValue) { return strValue; }
    static void from(const Json& json, std::string& strValue) {
        strValue = json.get<std::string>();
    }
};

template <>
struct ScalarJson<OptionalBlock> {
    static constexpr const char* Words = "base64";
    static bool takes(const Json& json) {
        return json.is_null() || (json.is_string() && fromBase64(json.get<std::string>()));
    }
    static Json to(const OptionalBlock& block) {
        return block ? Json(toBase64(*block)) : Json(nullptr);
    }
    static void from(const Json& json, OptionalBlock& block) {
        block = json.is_null() ? OptionalBlock() : fromBase64(json.get<std::string>());
    }
};

// Calls with the MemberType of a kind that holds a single value.
template <class Visitor>
decltype(auto) visitScalar(FieldKind nKind, const Visitor& visitor) {
    using Result = decltype(visitor(MemberType<bool>()));
    return visitKind(nKind, [&](auto type, auto form) -> Result {
        using Form = decltype(form);
        if constexpr (std::is_same_v<Form, FieldForm::Attribute> ||
                      std::is_same_v<Form, FieldForm::Encoded>) {
            return visitor(type);
        } else {
            throw std::logic_error("a kind of field that holds no single value");
        }
    });
}

Json scalarToJson(FieldKind nKind, const void* pObject) {
    return visitScalar(nKind, [&](auto type) {
        using T = typename decltype(type)::Type;
        return ScalarJson<T>::to(*static_cast<const T*>(pObject));
    });
}

void scalarFromJson(const Json& json, FieldKind nKind, void* pObject) {
    visitScalar(nKind, [&](auto type) {
        using T = typename decltype(type)::Type;
        ScalarJson<T>::from(json, *static_cast<T*>(pObject));
    });
}

bool isScalar(const Json& json, FieldKind nKind) {
    return visitScalar(
        nKind, [&](auto type) { return ScalarJson<typename decltype(type)::Type>::takes(json); });
}

std::string describeScalar(FieldKind nKind) {
    return visitScalar(nKind, [](auto type) -> std::string {
        return ScalarJson<typename decltype(type)::Type>::Words;
    });
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
    std::vector<std::string> vecNames;
    forEachField(descriptor,
                 [&](const FieldDescriptor& field) { vecNames.push_back(field.szTag); });
    throw UsageError(strPath + " has no field '" + strName + "'" +
                     suggest(strName, "fields", vecNames));
}

// Bare values stand in lists of their own type.
Json scalarListToJson(FieldKind nKind, const void* pObject) {
    return visitScalar(nKind, [&](auto type) {
        using T = typename decltype(type)::Type;
        Json json = Json::array();
        for (const auto& value : *static_cast<const std::vector<T>*>(pObject)) {
            json.push_back(ScalarJson<T>::to(value));
        }
        return json;
    });
}

void scalarListFromJson(const Json& json, FieldKind nKind, void* pObject) {
    visitScalar(nKind, [&](auto type) {
        using T = typename decltype(type)::Type;
        std::vector<T> vecValues;
        for (const Json& element : json) {
            T value{};
            ScalarJson<T>::from(element, value);
            vecValues.push_back(std::move(value));
        }
        *static_cast<std::vector<T>*>(pObject) = std::move(vecValues);
    });
}

void listFromJson(const Json& json, const Shape& shape, void* pObject) {
    if (shape.pRecord == nullptr) {
        scalarListFromJson(json, shape.nScalar, pObject);
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
        case FieldKind::Bool:
        case FieldKind::Int:
        case FieldKind::UnsignedShort:
        case FieldKind::Float:
        case FieldKind::Double:
        case FieldKind::String:
        case FieldKind::Block:
            return {false, nullptr, field.nKind};
    }
    return {};
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
        throw UsageError(strPath + " takes " + describeShape(shape) + ", not " + jsonText(json));
    }
    if (json.is_string() && json.get_ref<const std::string&>().find('\0') != std::string::npos) {
        throw UsageError(strPath + " cannot hold the character U+0000: a text ends there");
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
