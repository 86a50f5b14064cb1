#pragma once

#include <string>

/** The message of an exception that an action throws; "accepted" if it throws none. */
template <class Exception, class Action>
std::string messageOf(const Action& action)
{
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return "accepted";
}
