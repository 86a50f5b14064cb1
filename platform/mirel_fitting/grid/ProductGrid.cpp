#include <mirel_fitting/grid/ProductGrid.h>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

bool areEqual(const double* a, const double* b, std::size_t count)
{
    return std::memcmp(a, b, count * sizeof(double)) == 0;
}

/** Position of the first value that differs from the first, `count` if there is none. */
std::size_t firstChange(const double* x, std::size_t count)
{
    constexpr std::size_t atATime = 256; // makes the call of memcmp() cheap
    std::size_t i = 1;
    while (i + atATime <= count && areEqual(x + i - 1, x + i, atATime)) {
        i += atATime;
    }
    while (i < count && areEqual(x, x + i, 1)) {
        ++i;
    }
    return i;
}

/** The largest divisor of `run` such that x changes at its multiples only. */
std::size_t commonRun(const double* x, std::size_t count, std::size_t run)
{
    for (std::size_t start = 0; run > 1 && start < count; start += run) {
        const std::size_t length = std::min(run, count - start);
        if (areEqual(x + start, x + start + 1, length - 1)) {
            continue;
        }
        for (std::size_t i = start + 1; i < start + length; ++i) {
            if (!areEqual(x + i - 1, x + i, 1)) {
                run = std::gcd(run, i);
            }
        }
    }
    return run;
}

/**
 * The rows after which values can change: each divides the next and, last, the number of rows.
 * Lowers the runs of the columns until it is so.
 */
std::vector<std::size_t> divisorChain(std::vector<std::size_t>& runs)
{
    std::vector<std::size_t> chain(runs);
    std::sort(chain.begin(), chain.end());
    // Downwards: what a run is lowered to has to divide into those above it as well.
    for (std::size_t i = chain.size(); i-- > 1;) {
        chain[i - 1] = std::gcd(chain[i - 1], chain[i]);
    }
    chain.erase(std::unique(chain.begin(), chain.end()), chain.end());
    for (std::size_t& run : runs) {
        // The largest of the chain that divides the run; the first divides all.
        run = *std::find_if(chain.rbegin(), chain.rend(),
                            [run](std::size_t link) { return run % link == 0; });
    }
    return chain;
}

/** The pattern that the varying columns share. */
struct Pattern
{
    std::size_t rows = 0;             // number of rows, from the first, that follow it
    std::vector<std::size_t> chain;   // see divisorChain()
    std::vector<std::size_t> runs;    // per column: length of its runs of equal values
    std::vector<std::size_t> periods; // per column: rows after which it repeats, or `rows`

    /** Whether a column varies before and after so many rows, within its period. */
    bool isSpanned(std::size_t link) const
    {
        for (std::size_t q = 0; q < runs.size(); ++q) {
            if (runs[q] < link && link < periods[q]) {
                return true;
            }
        }
        return false;
    }
    bool isProduct() const
    {
        return std::any_of(chain.begin(), chain.end(), [this](std::size_t link) {
            return 1 < link && link < rows && !isSpanned(link);
        });
    }
};

/**
 * @param runs up to the first change of each column.
 * @param isWhole whether all rows have to follow the pattern; else the last run may lack some.
 */
Pattern findPattern(const std::vector<const double*>& columns, std::size_t count,
                    std::vector<std::size_t> runs, bool isWhole)
{
    Pattern pattern;
    pattern.runs = std::move(runs);
    pattern.periods.resize(columns.size());
    // The runs hold until a column changes in between: then all is examined once more, with the
    // shorter run.
    bool isSettled = false;
    const auto shorten = [&](std::size_t q, std::size_t run) {
        isSettled = isSettled && run == pattern.runs[q];
        pattern.runs[q] = run;
    };
    while (!isSettled) {
        isSettled = true;
        for (std::size_t q = 0; q < columns.size(); ++q) {
            shorten(q, isWhole ? std::gcd(pattern.runs[q], count)
                               : commonRun(columns[q], count, pattern.runs[q]));
        }
        pattern.chain = divisorChain(pattern.runs);
        pattern.rows = count - count % pattern.chain.back();
        const auto chainEnd = pattern.chain.end();
        for (std::size_t q = 0; q < columns.size(); ++q) {
            const double* x = columns[q];
            const auto period = std::find_if(
                std::upper_bound(pattern.chain.begin(), chainEnd, pattern.runs[q]), chainEnd,
                [&](std::size_t p) { return areEqual(x, x + p, pattern.rows - p); });
            pattern.periods[q] = period == chainEnd ? pattern.rows : *period;
            shorten(q, commonRun(x, pattern.periods[q], pattern.runs[q]));
        }
    }
    return pattern;
}

} // namespace

std::vector<ProductGrid> ProductGrid::split(const std::vector<double*>& columns, std::size_t count)
{
    std::vector<ProductGrid> grids;
    std::size_t first = 0;
    while (first < count) {
        grids.push_back(ProductGrid(columns, first, count - first));
        first += grids.back().rowCount();
    }
    return grids;
}

ProductGrid::ProductGrid(const std::vector<double*>& columns, std::size_t first, std::size_t count)
    : first(first), rows(count)
{
    std::vector<std::size_t> varying;
    std::vector<const double*> values;
    std::vector<std::size_t> runs;
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const std::size_t run = firstChange(columns[k] + first, count);
        if (run == count) {
            constants.push_back(k);
            continue;
        }
        varying.push_back(k);
        values.push_back(columns[k] + first);
        runs.push_back(run);
    }
    if (varying.empty()) {
        return;
    }

    Pattern pattern = findPattern(values, count, runs, true);
    if (!pattern.isProduct()) {
        pattern = findPattern(values, count, runs, false);
    }
    rows = pattern.rows;

    // Rows between two links of the chain belong to different axes unless a column spans the link.
    std::vector<std::size_t>& links = pattern.chain;
    if (links.front() != 1) {
        links.insert(links.begin(), 1);
    }
    links.push_back(rows);
    for (std::size_t i = 0; i + 1 < links.size(); ++i) {
        if (!pattern.isSpanned(links[i]) && links[i] < rows) {
            axisList.push_back({links[i], 1, {}});
        }
        axisList.back().size = links[i + 1] / axisList.back().stride;
    }
    for (std::size_t q = 0; q < varying.size(); ++q) {
        if (pattern.runs[q] == rows) {
            constants.push_back(varying[q]); // it changes where the next grid begins
            continue;
        }
        const auto behind = std::find_if(axisList.begin(), axisList.end(), [&](const Axis& axis) {
            return axis.stride > pattern.runs[q];
        });
        std::prev(behind)->columns.push_back(varying[q]);
    }
    std::sort(constants.begin(), constants.end());
}

std::vector<ProductGrid> ProductGrid::cut(std::size_t maxValues) const
{
    const bool isShort = std::all_of(axisList.begin(), axisList.end(),
                                     [&](const Axis& axis) { return axis.size <= maxValues; });
    if (isShort) {
        return {*this};
    }
    // Where the slowest axis is not the long one, a faster one is, for each of its values.
    const Axis& slowest = axisList.back();
    const std::size_t parts =
        slowest.size > maxValues ? (slowest.size + maxValues - 1) / maxValues : slowest.size;
    std::vector<ProductGrid> grids;
    for (std::size_t part = 0; part < parts; ++part) {
        const std::size_t firstValue = part * slowest.size / parts;
        const std::size_t lastValue = (part + 1) * slowest.size / parts;
        for (ProductGrid& grid : slice(firstValue, lastValue - firstValue).cut(maxValues)) {
            grids.push_back(std::move(grid));
        }
    }
    return grids;
}

/** Some values of the slowest axis. */
ProductGrid ProductGrid::slice(std::size_t firstValue, std::size_t values) const
{
    ProductGrid result = *this;
    Axis& slowest = result.axisList.back();
    result.first = first + firstValue * slowest.stride;
    result.rows = values * slowest.stride;
    slowest.size = values;
    if (values == 1) {
        result.constants.insert(result.constants.end(), slowest.columns.begin(),
                                slowest.columns.end());
        std::sort(result.constants.begin(), result.constants.end());
        result.axisList.pop_back();
    }
    return result;
}
