#pragma once

#include <iostream>
#include <sstream>
#include <string>

/** While one lives, what the program writes to std::cerr is kept here instead. */
class CapturedErrors
{
public:
    CapturedErrors() : previous(std::cerr.rdbuf(captured.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(previous); }

    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    std::string text() const { return captured.str(); }

private:
    std::ostringstream captured;
    std::streambuf* previous;
};
