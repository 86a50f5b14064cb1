#include <mirel_fitting/numerics/InputNames.h>

#include <utility>

InputNames::InputNames(std::vector<std::string> names) : nameList(std::move(names)) {}

std::string InputNames::input(std::size_t position) const
{
    return position < nameList.size() ? '"' + nameList[position] + '"'
                                      : "V" + std::to_string(position + 1);
}

std::string InputNames::product(std::size_t first, std::size_t second) const
{
    if (first == second) {
        return input(first) + "^2";
    }
    return input(first) + (nameList.empty() ? " " : " * ") + input(second);
}
