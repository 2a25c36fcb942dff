// FieldText: a field that is one attribute, as text and back: a scalar, or a joined list.
#pragma once

#include <string>
#include <vector>

#include "domain/MemberVisitor.h"
#include "domainxml/XmlText.h"

namespace FieldText {

using fleetkit::FieldDescriptor;
using JoinedRecords = fleetkit::NestedListMember<void>;
using ConstJoinedRecords = fleetkit::NestedListMember<const void>;

inline std::string of(const FieldDescriptor&, bool bValue) {
    return XmlText::ofBool(bValue);
}
inline std::string of(const FieldDescriptor&, int nValue) {
    return XmlText::ofInt(nValue);
}
inline std::string of(const FieldDescriptor&, unsigned short nValue) {
    return XmlText::ofInt(nValue);
}
inline std::string of(const FieldDescriptor&, float fValue) {
    return XmlText::ofFloat(fValue);
}
inline std::string of(const FieldDescriptor&, double dValue) {
    return XmlText::ofDouble(dValue);
}
inline const std::string& of(const FieldDescriptor&, const std::string& strValue) {
    return strValue;
}
std::string of(const FieldDescriptor& field, const std::vector<int>& vecNumbers);
std::string of(const FieldDescriptor& field, const ConstJoinedRecords& records);
inline std::string of(const FieldDescriptor& field, const JoinedRecords& records) {
    return of(field, ConstJoinedRecords{records.type, records.pList});
}

// A text that is no value of the field's type leaves the member as it was.
inline void read(const FieldDescriptor&, const char* szText, bool& bValue) {
    XmlText::toBool(szText, bValue);
}
void read(const FieldDescriptor& field, const char* szText, int& nValue);
inline void read(const FieldDescriptor&, const char* szText, unsigned short& nValue) {
    nValue = static_cast<unsigned short>(XmlText::toInt(szText));
}
inline void read(const FieldDescriptor&, const char* szText, float& fValue) {
    XmlText::toFloat(szText, fValue);
}
inline void read(const FieldDescriptor&, const char* szText, double& dValue) {
    XmlText::toDouble(szText, dValue);
}
inline void read(const FieldDescriptor&, const char* szText, std::string& strValue) {
    strValue = szText;
}
void read(const FieldDescriptor& field, const char* szText, std::vector<int>& vecNumbers);
void read(const FieldDescriptor& field, const char* szText, const JoinedRecords& records);

// To zero, false or empty.
template <class T>
void clear(T& value) {
    value = T();
}
inline void clear(std::string& strValue) {
    strValue.clear();
}
inline void clear(JoinedRecords& records) {
    records.type.access.listReset(records.pList, 0);
}

}  // namespace FieldText
