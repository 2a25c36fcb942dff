// The text of the exception that a function ends with.
#pragma once

#include <string>

template <class Exception, class Action>
std::string thrownText(const Action& objAction) {
    try {
        objAction();
    } catch (const Exception& objError) {
        return objError.what();
    }
    return "nothing was thrown";
}
