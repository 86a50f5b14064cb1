#include "session/cases/CaseSeparator.h"

#include "session/cases/CsvSplitter.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace {
std::vector<std::size_t> cellsPerRecord(std::string_view sample, bool isWholeFile, char separator)
{
    std::string_view rest = sample;
    const auto read = [&rest](char* buffer, std::size_t capacity) {
        const std::size_t count = rest.copy(buffer, capacity);
        rest.remove_prefix(count);
        return count;
    };
    CsvSplitter splitter(read, separator, sample.size() + 1);
    std::vector<std::size_t> counts;
    while (splitter.next()) {
        counts.push_back(splitter.cells().size());
    }
    if (!isWholeFile && counts.size() > 1) {
        counts.pop_back(); // The sample may end inside the last record.
    }
    return counts;
}
} // namespace

char recogniseSeparator(std::string_view sample, bool isWholeFile)
{
    char best = ',';
    std::pair<std::size_t, std::size_t> bestScore(0, 0);
    for (const char candidate : std::array<char, 3>{'\t', ';', ','}) {
        const std::vector<std::size_t> counts = cellsPerRecord(sample, isWholeFile, candidate);
        if (counts.empty() || counts.front() < 2) {
            continue;
        }
        const auto like = std::count(counts.begin(), counts.end(), counts.front());
        const std::pair<std::size_t, std::size_t> score(like, counts.front());
        if (score > bestScore) {
            best = candidate;
            bestScore = score;
        }
    }
    return best;
}
