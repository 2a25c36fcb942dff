// DomainVectorContainer<T>: a list of records of one type, held by value.
#pragma once

#include <utility>
#include <vector>

#include "domain/DomainContainer.h"

// The domain id of a record type, without making a record of it.
FLEETKIT_EXPORT std::uint32_t domainIdOf(const RecordDescriptor& descriptor) noexcept;

template <class T>
class DomainVectorContainer final : public DomainContainer {
public:
    DomainVectorContainer() : DomainContainer(domainIdOf(T::descriptor())) {}
    explicit DomainVectorContainer(std::vector<T> vecElements)
        : DomainContainer(domainIdOf(T::descriptor())), m_vecElements(std::move(vecElements)) {}

    void append(const T& element) { m_vecElements.push_back(element); }
    void setElements(std::vector<T> vecElements) { m_vecElements = std::move(vecElements); }
    std::vector<T>& getElements() noexcept { return m_vecElements; }
    const std::vector<T>& getElements() const noexcept { return m_vecElements; }

private:
    std::vector<T> m_vecElements;
};
