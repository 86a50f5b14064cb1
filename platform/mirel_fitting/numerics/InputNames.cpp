#include <mirel_fitting/numerics/InputNames.h>

#include <mirel_fitting/numerics/TextPieces.h>

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

std::string InputNames::list(const std::vector<std::size_t>& positions) const
{
    std::vector<std::string> names;
    for (const std::size_t position : positions) {
        names.push_back(input(position));
    }
    return listedText(std::move(names));
}
