#include <mirel_fitting/ReplicatedCases.h>

#include <cassert>
#include <limits>

#include <cstring>

namespace {

/** A number from which nothing of the value can be seen, as hash tables need it. */
std::uint64_t scatter(std::uint64_t hash, double value)
{
    // Adding 0 makes 0 of -0, which is the same input.
    value += 0.0;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    // The finaliser of SplitMix64. Steele, Lea, Flood: Fast splittable pseudorandom number
    // generators, OOPSLA 2014.
    std::uint64_t x = hash + bits + 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31);
}

} // namespace

ReplicatedCases::ReplicatedCases(const std::vector<const double*>& columns, std::size_t cases)
{
    constexpr std::uint32_t nobody = std::numeric_limits<std::uint32_t>::max();
    assert(cases < nobody);

    std::size_t slots = 16;
    while (slots < 2 * cases) {
        slots *= 2;
    }
    // Open addressing: the first case of each point.
    std::vector<std::uint32_t> table(slots, nobody);
    std::vector<std::uint32_t> points(cases);
    const auto isSame = [&](std::size_t a, std::size_t b) {
        for (const double* column : columns) {
            if (column[a] != column[b]) {
                return false;
            }
        }
        return true;
    };
    std::uint32_t found = 0;
    for (std::size_t row = 0; row < cases; ++row) {
        std::uint64_t hash = 0;
        for (const double* column : columns) {
            hash = scatter(hash, column[row]);
        }
        std::size_t slot = hash & (slots - 1);
        while (table[slot] != nobody && !isSame(table[slot], row)) {
            slot = (slot + 1) & (slots - 1);
        }
        if (table[slot] == nobody) {
            table[slot] = static_cast<std::uint32_t>(row);
            points[row] = found++;
        } else {
            points[row] = points[table[slot]];
        }
    }
    if (found < cases) {
        this->points = found;
        pointOfCase = std::move(points);
    }
}

double ReplicatedCases::squaresWithin(const double* values) const
{
    std::vector<double> first(points);
    std::vector<double> means(points, 0.0);
    std::vector<double> counts(points, 0.0);
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        if (counts[point] == 0.0) {
            first[point] = values[row];
        }
        // About the point's first value: what all have in common rounds nothing.
        counts[point] += 1.0;
        means[point] += values[row] - first[point];
    }
    double squares = 0.0;
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        const double deviation = values[row] - first[point] - means[point] / counts[point];
        squares += deviation * deviation;
    }
    return squares;
}
