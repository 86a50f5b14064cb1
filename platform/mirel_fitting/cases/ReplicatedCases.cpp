#include <mirel_fitting/cases/ReplicatedCases.h>

#include <mirel_fitting/cases/ColumnScale.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/** Rows whose hashes are computed together, column by column. */
constexpr std::size_t rowsPerBlock = 512;

/** The numbers of cells of a billionth of the range that the values lie in. */
std::vector<double> cellsOf(const double* values, std::size_t count)
{
    constexpr double cells = 1e9;
    // Levels lie at simple fractions of the range: a cell begins at none of them.
    constexpr double offset = 0.381966;
    const ColumnScale scale(values, count);
    std::vector<double> result(count, 0.0);
    for (std::size_t k = 0; k < count && scale.halfRange() > 0.0; ++k) {
        const double fromCentre = (values[k] - scale.centre()) / (2.0 * scale.halfRange());
        result[k] = std::floor(fromCentre * cells + offset);
    }
    return result;
}

/** hashes[k] += a number that depends on all bits of the value. */
void addColumn(const double* values, std::size_t count, std::uint64_t multiplier,
               std::uint64_t* hashes)
{
    for (std::size_t k = 0; k < count; ++k) {
        // Adding 0 turns -0 into 0: they are the same input.
        const double value = values[k] + 0.0;
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        // Round numbers differ in their high bits only, which a product would shift out.
        hashes[k] += (bits ^ (bits >> 32)) * multiplier;
    }
}

/** Spreads every bit of a hash over all bits: its low ones are the first slot looked at. */
std::uint64_t mixed(std::uint64_t hash)
{
    hash ^= hash >> 32;
    hash *= 0xd6e8feb86659fd93ULL;
    return hash ^ (hash >> 32);
}

} // namespace

ReplicatedCases::ReplicatedCases(const std::vector<const double*>& values, std::size_t cases)
{
    constexpr std::uint32_t emptySlot = std::numeric_limits<std::uint32_t>::max();
    assert(cases < emptySlot);
    // The first case of a point, and a part of its hash, so that other points are seldom compared.
    struct Slot
    {
        std::uint32_t row;
        std::uint32_t tag;
    };

    std::vector<std::vector<double>> columns;
    for (const double* const column : values) {
        columns.push_back(cellsOf(column, cases));
    }
    std::size_t slots = 16;
    while (slots < 2 * cases) {
        slots *= 2;
    }
    std::vector<Slot> table(slots, Slot{emptySlot, 0}); // open addressing
    std::vector<std::uint32_t> pointsFound(cases);
    const auto isSame = [&](std::size_t a, std::size_t b) {
        return std::all_of(columns.begin(), columns.end(), [&](const std::vector<double>& column) {
            return column[a] == column[b];
        });
    };
    std::uint64_t hashes[rowsPerBlock];
    for (std::size_t start = 0; start < cases; start += rowsPerBlock) {
        const std::size_t rows = std::min(rowsPerBlock, cases - start);
        std::fill_n(hashes, rows, 0);
        // A different odd multiplier for each column.
        std::uint64_t multiplier = 0x9e3779b97f4a7c15ULL;
        for (const std::vector<double>& column : columns) {
            addColumn(column.data() + start, rows, multiplier | 1, hashes);
            multiplier = mixed(multiplier + 0x9e3779b97f4a7c15ULL);
        }
        for (std::size_t k = 0; k < rows; ++k) {
            const std::size_t row = start + k;
            const std::uint64_t hash = mixed(hashes[k]);
            const auto tag = static_cast<std::uint32_t>(hash >> 32);
            std::size_t slot = hash & (slots - 1);
            while (table[slot].row != emptySlot &&
                   (table[slot].tag != tag || !isSame(table[slot].row, row))) {
                slot = (slot + 1) & (slots - 1);
            }
            if (table[slot].row == emptySlot) {
                table[slot] = {static_cast<std::uint32_t>(row), tag};
                pointsFound[row] = static_cast<std::uint32_t>(points++);
            } else {
                pointsFound[row] = pointsFound[table[slot].row];
            }
        }
    }
    if (points < cases) {
        pointOfCase = std::move(pointsFound);
    } else {
        points = 0;
    }
}

double ReplicatedCases::withinSquares(const double* values,
                                      const std::vector<double>& weights) const
{
    const auto weight = [&](std::size_t row) { return weights.empty() ? 1.0 : weights[row]; };
    std::vector<double> first(points);
    std::vector<double> means(points, 0.0);
    std::vector<double> counts(points, 0.0);
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        if (counts[point] == 0.0) {
            first[point] = values[row];
        }
        // Relative to the point's first value, so that a large mean costs no digits.
        counts[point] += weight(row);
        means[point] += weight(row) * (values[row] - first[point]);
    }
    double squares = 0.0;
    for (std::size_t row = 0; row < pointOfCase.size(); ++row) {
        const std::size_t point = pointOfCase[row];
        const double deviation = values[row] - first[point] - means[point] / counts[point];
        squares += weight(row) * deviation * deviation;
    }
    return squares;
}
