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

    /** As listedText(). */
    std::string list(const std::vector<std::size_t>& positions) const;

private:
    std::vector<std::string> nameList;
};
