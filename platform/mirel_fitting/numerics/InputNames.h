#pragma once

#include <cstddef>
#include <string>
#include <vector>

/** What texts call the inputs: V1, V2, ..., or by names in quotes where there are names. */
class InputNames
{
public:
    /** @param names of the inputs; those beyond them have symbols. */
    explicit InputNames(std::vector<std::string> names = {});

    /** V1, or "Pressure". @param position counted from 0. */
    std::string input(std::size_t position) const;

    /** V1^2 and V1 V2, or "Pressure"^2 and "Pressure" * "Ratio". */
    std::string product(std::size_t first, std::size_t second) const;

    /** The inputs as listed() has them. */
    std::string list(const std::vector<std::size_t>& positions) const;

    /** "a", "a and b", "a, b and c"; of more than five names "a, b, c and 297 more". */
    static std::string listed(const std::vector<std::string>& names);

private:
    std::vector<std::string> nameList;
};
