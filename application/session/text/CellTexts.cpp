#include "session/text/CellTexts.h"

void CellTexts::reserve(std::size_t cells)
{
    const std::size_t known = size();
    if (known == 0 || cells <= known) {
        return;
    }
    const double perCell = static_cast<double>(characters.size()) / static_cast<double>(known);
    characters.reserve(static_cast<std::size_t>(perCell * static_cast<double>(cells)));
    ends.reserve(cells);
}
