// The text of the exception that a function ends with.
#pragma once

#include <string>

template <class Exception, class Action>
std::string thrownText(const Action& action) {
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}
