#include "session/cases/CaseSeparator.h"

#include "session/cases/CsvSplitter.h"

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace {
class CellCounter : public CsvSplitter::Sink
{
public:
    void cell(std::string_view, std::size_t) override { ++cells; }
    void endRecord(std::size_t) override { counts.push_back(std::exchange(cells, 0)); }

    std::vector<std::size_t> counts;

private:
    std::size_t cells = 0;
};

std::vector<std::size_t> cellsPerRecord(std::string_view sample, bool isWholeFile, char separator)
{
    CellCounter counter;
    CsvSplitter splitter(separator, counter);
    splitter.parse(sample.data(), sample.size());
    if (isWholeFile || counter.counts.empty()) {
        splitter.finish();
    }
    return std::move(counter.counts);
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
        std::pair<std::size_t, std::size_t> score(0, counts.front());
        for (const std::size_t count : counts) {
            score.first += count == counts.front() ? 1 : 0;
        }
        if (score > bestScore) {
            best = candidate;
            bestScore = score;
        }
    }
    return best;
}
