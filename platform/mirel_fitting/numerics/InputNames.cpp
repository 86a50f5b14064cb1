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

std::string InputNames::list(const std::vector<std::size_t>& positions) const
{
    std::vector<std::string> names;
    for (const std::size_t position : positions) {
        names.push_back(input(position));
    }
    return listed(names);
}

std::string InputNames::listed(const std::vector<std::string>& names)
{
    constexpr std::size_t most = 5;
    constexpr std::size_t shownOfMore = 3;

    const std::size_t shown = names.size() > most ? shownOfMore : names.size();
    std::string text;
    for (std::size_t i = 0; i < shown; ++i) {
        const bool isLast = i > 0 && i + 1 == names.size();
        text += (i == 0 ? "" : isLast ? " and " : ", ") + names[i];
    }
    return shown == names.size() ? text
                                 : text + " and " + std::to_string(names.size() - shown) + " more";
}
