#include "session/CellTexts.h"

void CellTexts::append(std::string_view text)
{
    characters.append(text);
    ends.push_back(characters.size());
}

std::size_t CellTexts::size() const
{
    return ends.size();
}

std::string_view CellTexts::operator[](std::size_t cell) const
{
    const std::size_t begin = cell == 0 ? 0 : ends[cell - 1];
    return std::string_view(characters).substr(begin, ends[cell] - begin);
}
