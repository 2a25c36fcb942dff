// Walks dotted paths through JSON, with the shape of the record beside it.
#include "FieldAssignment.h"

#include <charconv>
#include <set>

#include "UsageError.h"

using namespace fleetkit;

namespace {

std::vector<std::string> splitPath(const std::string& strPath) {
    std::vector<std::string> vecSteps;
    if (strPath.empty()) {
        return vecSteps;
    }
    std::size_t nStart = 0;
    for (std::size_t nDot = strPath.find('.'); nDot != std::string::npos;
         nDot = strPath.find('.', nStart)) {
        vecSteps.push_back(strPath.substr(nStart, nDot - nStart));
        nStart = nDot + 1;
    }
    vecSteps.push_back(strPath.substr(nStart));
    return vecSteps;
}

// Deeper than any record. Whoever copies or prints a value goes down it step by step.
constexpr int MostLevels = 64;

Json parseJson(const std::string& strText, const std::string& strPath) {
    const auto checkDepth = [&](int nLevel, Json::parse_event_t, Json&) {
        if (nLevel > MostLevels) {
            throw UsageError(strPath + " takes JSON of at most " + std::to_string(MostLevels) +
                             " levels");
        }
        return true;
    };
    return Json::parse(strText, checkDepth, false);
}

// A text is taken as it stands; every other kind is written as in JSON.
Json parseValue(const std::string& strText, const Shape& shape, const std::string& strPath) {
    const bool isText = !shape.isList && shape.pRecord == nullptr &&
                        (shape.nScalar == FieldKind::String || shape.nScalar == FieldKind::Block);
    Json value = isText ? Json(strText) : parseJson(strText, strPath);
    if (value.is_discarded()) {
        throw UsageError(strPath + " takes " + describeShape(shape) + ", not '" + strText + "'");
    }
    checkJson(value, shape, strPath);
    return value;
}

// An appended element has no fields yet: what is not assigned stays at the record's defaults.
Json& elementAt(Json& list, const std::string& strIndex, const std::string& strPath) {
    std::size_t nIndex = 0;
    const auto [pEnd, nError] =
        std::from_chars(strIndex.data(), strIndex.data() + strIndex.size(), nIndex);
    if (nError != std::errc() || nIndex > list.size()) {
        throw UsageError(strPath + " has no element " + strIndex + "; it has " +
                         std::to_string(list.size()));
    }
    if (nIndex == list.size()) {
        list.push_back(nullptr);
    }
    return list[nIndex];
}

}  // namespace

FieldAssignment parseAssignment(const std::string& strText, const Shape& shape,
                                const std::string& strName) {
    const std::size_t nEqual = strText.find('=');
    if (nEqual == std::string::npos) {
        throw UsageError("'" + strText + "' is not of the form FIELD=VALUE");
    }
    FieldAssignment assignment{splitPath(strText.substr(0, nEqual)), {}};
    Shape place = shape;
    std::string strPath = strName;
    for (const std::string& strStep : assignment.vecPath) {
        place = shapeBelow(place, strStep, strPath);
        strPath = pathBelow(strPath, strStep);
    }
    assignment.value = parseValue(strText.substr(nEqual + 1), place, strPath);
    return assignment;
}

void assign(const FieldAssignment& assignment, const Shape& shape, const std::string& strName,
            Json& value) {
    Json* pPlace = &value;
    Shape place = shape;
    std::string strPath = strName;
    for (const std::string& strStep : assignment.vecPath) {
        pPlace = place.isList ? &elementAt(*pPlace, strStep, strPath) : &(*pPlace)[strStep];
        place = shapeBelow(place, strStep, strPath);
        strPath = pathBelow(strPath, strStep);
    }
    if (assignment.value.is_object()) {
        pPlace->update(assignment.value, true);
    } else {
        *pPlace = assignment.value;
    }
}

void requireEveryField(const std::vector<FieldAssignment>& vecAssignments,
                       const RecordDescriptor& descriptor, const std::string& strName) {
    std::set<std::string> setGiven;
    for (const FieldAssignment& assignment : vecAssignments) {
        if (!assignment.vecPath.empty()) {
            setGiven.insert(assignment.vecPath.front());
            continue;
        }
        for (const auto& [strField, value] : assignment.value.items()) {
            setGiven.insert(strField);
        }
    }
    std::string strMissing;
    forEachField(descriptor, [&](const FieldDescriptor& field) {
        if (setGiven.count(field.szTag) == 0) {
            strMissing += std::string(" ") + field.szTag;
        }
    });
    if (!strMissing.empty()) {
        throw UsageError(strName +
                         " cannot be read, so every field has to be given; missing:" + strMissing);
    }
}
