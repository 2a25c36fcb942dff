// Function objects without arguments, shared by reference count.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "Product/Technic/SafePointer.h"

namespace KX_FUNCTION {

// What a function<R> holds, whatever the callable.
template <class R>
class function_obj_base {
public:
    virtual ~function_obj_base() = default;
    virtual R operator()() = 0;
};

// Holds a copy of a callable.
template <class R, class F>
class function_obj : public function_obj_base<R> {
public:
    explicit function_obj(F callable) : m_callable(std::move(callable)) {}

    ~function_obj() noexcept override = default;

    R operator()() override { return m_callable(); }

private:
    F m_callable;
};

// A member function bound to an object. The object is not owned and has to outlive the binding.
template <class R, class T>
class bind_funcobj0 {
public:
    bind_funcobj0(R (T::*pMember)(), T* pTarget) : m_pMember(pMember), m_pTarget(pTarget) {}

    R operator()() const { return (m_pTarget->*m_pMember)(); }

private:
    R (T::*m_pMember)();
    T* m_pTarget;
};

// A value that calls. Copies share one callable; the last one to go deletes it.
//
// A default-constructed function holds nothing: copying or calling it throws as SafePointer does.
template <class R>
class function {
public:
    function() = default;

    template <class F, class = std::enable_if_t<!std::is_base_of_v<function, std::decay_t<F>>>>
    function(F callable)
        : m_callable(wrapSafe<function_obj_base<R>>(
              std::make_unique<function_obj<R, F>>(std::move(callable)))) {}

    function(const function&) = default;
    function& operator=(const function&) = default;
    virtual ~function() noexcept(false) = default;

    R operator()() const { return (*m_callable)(); }

private:
    SafePointer<function_obj_base<R>> m_callable;
};

}  // namespace KX_FUNCTION
