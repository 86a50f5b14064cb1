#include <mirel_fitting/cases/SpaceFillingSubset.h>

#include <mirel_fitting/FitProgress.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

std::vector<std::size_t> randomSubset(std::size_t cases, std::size_t size)
{
    std::vector<std::size_t> indices(cases);
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    if (size >= cases) {
        return indices;
    }
    std::mt19937_64 generator(cases);
    for (std::size_t i = 0; i < size; ++i) {
        std::swap(indices[i], indices[i + generator() % (cases - i)]);
    }
    indices.resize(size);
    std::sort(indices.begin(), indices.end());
    return indices;
}

std::vector<std::size_t> stratifiedRows(std::size_t rows, std::size_t size)
{
    const std::size_t count = std::min(rows, size);
    // floor(k rows / count), without overflow.
    const auto startOf = [&](std::size_t k) {
        return k * (rows / count) + k * (rows % count) / count;
    };
    std::vector<std::size_t> result(count);
    std::mt19937_64 generator(rows);
    for (std::size_t k = 0; k < count; ++k) {
        result[k] = startOf(k) + generator() % (startOf(k + 1) - startOf(k));
    }
    return result;
}

std::vector<std::size_t> spaceFillingSubset(const KrigingData& data, std::size_t size)
{
    constexpr std::size_t poolFactor = 5;
    constexpr std::size_t casesPerReport = 64;

    const std::vector<std::size_t> pool =
        randomSubset(data.cases, size >= data.cases ? data.cases : poolFactor * size);
    if (size >= pool.size()) {
        return pool;
    }
    std::vector<double> columns;
    columns.reserve(pool.size() * data.inputs);
    for (std::size_t k = 0; k < data.inputs; ++k) {
        for (const std::size_t index : pool) {
            columns.push_back(data.coordinates[k * data.cases + index]);
        }
    }

    std::vector<double> nearest(pool.size(), std::numeric_limits<double>::infinity());
    std::vector<double> squares(pool.size());
    std::vector<std::size_t> result;
    std::size_t newest = 0;
    while (result.size() < size) {
        if (result.size() % casesPerReport == 0) {
            FitProgress::report(static_cast<double>(result.size()) / static_cast<double>(size),
                                "Choosing a subset of the cases");
        }
        result.push_back(pool[newest]);
        std::fill(squares.begin(), squares.end(), 0.0);
        for (std::size_t k = 0; k < data.inputs; ++k) {
            const double* column = columns.data() + k * pool.size();
            const double at = column[newest];
            for (std::size_t i = 0; i < pool.size(); ++i) {
                squares[i] += (column[i] - at) * (column[i] - at);
            }
        }
        for (std::size_t i = 0; i < pool.size(); ++i) {
            nearest[i] = std::min(nearest[i], squares[i]);
        }
        // A case that is taken is never chosen again, even if all others coincide with it.
        nearest[newest] = -1.0;
        newest = static_cast<std::size_t>(std::max_element(nearest.begin(), nearest.end()) -
                                          nearest.begin());
    }
    std::sort(result.begin(), result.end());
    return result;
}
