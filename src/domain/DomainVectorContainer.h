// DomainVectorContainer<T>: a list of records of one type, held by value.
#pragma once

#include <utility>
#include <vector>

#include "domain/DomainContainer.h"

template <class T>
class DomainVectorContainer final : public DomainContainer {
public:
    DomainVectorContainer() : DomainContainer(T::DomainId) {}
    explicit DomainVectorContainer(std::vector<T> vecElements)
        : DomainContainer(T::DomainId), m_vecElements(std::move(vecElements)) {}

    void append(const T& element) { m_vecElements.push_back(element); }
    void setElements(std::vector<T> vecElements) { m_vecElements = std::move(vecElements); }
    std::vector<T>& getElements() noexcept { return m_vecElements; }
    const std::vector<T>& getElements() const noexcept { return m_vecElements; }

private:
    std::vector<T> m_vecElements;
};
