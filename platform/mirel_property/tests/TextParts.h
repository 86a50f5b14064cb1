#pragma once

#include <gtest/gtest.h>

#include <string>

/** Whether a part stands in a text; a check that fails shows both. */
inline testing::AssertionResult contains(const std::string& text, const std::string& part)
{
    const bool isThere = text.find(part) != std::string::npos;
    return testing::AssertionResult(isThere) << "\"" << part << "\" in:\n" << text;
}

/** Whether a text begins with another; a check that fails shows both. */
inline testing::AssertionResult beginsWith(const std::string& text, const std::string& beginning)
{
    const bool isThere = text.compare(0, beginning.size(), beginning) == 0;
    return testing::AssertionResult(isThere) << "\"" << beginning << "\" begins:\n" << text;
}
