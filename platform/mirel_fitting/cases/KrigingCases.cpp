#include <mirel_fitting/cases/KrigingCases.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/SurrogateModelInterface.h>
#include <mirel_fitting/cases/ColumnScale.h>

#include <algorithm>
#include <cmath>
#include <string>

void KrigingCases::requireRanges(const std::vector<double*>& columns, std::size_t rows)
{
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const ColumnScale scale(columns[k], rows);
        if (std::isinf(scale.largestValue() - scale.smallestValue())) {
            throw SurrogateModelInterface::Error("The values of the input V" +
                                                 std::to_string(k + 1) +
                                                 " lie too far apart: their range is no number.");
        }
    }
}

KrigingCases::KrigingCases(const std::vector<double*>& columns, std::size_t rows)
    : rows(rows), inputs(columns.size())
{
    requireRanges(columns, rows);
    for (std::size_t k = 0; k < inputs; ++k) {
        const ColumnScale scale(columns[k], rows);
        if (!scale.isConstantUpToRounding()) {
            active.push_back(k);
            minima.push_back(scale.smallestValue());
            ranges.push_back(scale.largestValue() - scale.smallestValue());
        }
    }

    sortRows(columns);
    findPoints(columns);
    for (std::size_t k = 0; k < active.size(); ++k) {
        FitProgress::advance();
        scaleInput(columns[active[k]], minima[k], ranges[k]);
    }
}

int KrigingCases::compare(const std::vector<double*>& columns, std::size_t a, std::size_t b) const
{
    for (const std::size_t k : active) {
        if (columns[k][a] != columns[k][b]) {
            return columns[k][a] < columns[k][b] ? -1 : 1;
        }
    }
    return 0;
}

void KrigingCases::sortRows(const std::vector<double*>& columns)
{
    // The first input nearly always decides the order: its values are stored beside the row
    // numbers.
    struct Entry
    {
        double first;
        std::size_t row;
    };
    std::vector<Entry> entries;
    entries.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        entries.push_back({active.empty() ? 0.0 : columns[active.front()][row], row});
    }
    const auto isBefore = [&](const Entry& a, const Entry& b) {
        if (a.first != b.first) {
            return a.first < b.first;
        }
        const int sign = compare(columns, a.row, b.row);
        return sign != 0 ? sign < 0 : a.row < b.row;
    };
    FitProgress::advance();
    std::sort(entries.begin(), entries.end(), isBefore);
    FitProgress::advance();
    order.reserve(rows);
    for (const Entry& entry : entries) {
        order.push_back(entry.row);
    }
}

void KrigingCases::findPoints(const std::vector<double*>& columns)
{
    for (std::size_t i = 0; i < rows; ++i) {
        if (i == 0 || compare(columns, order[i - 1], order[i]) != 0) {
            starts.push_back(i);
        }
    }
    starts.push_back(rows);
}

void KrigingCases::scaleInput(const double* values, double minimum, double range)
{
    scaled.reserve(pointCount() * active.size());
    for (std::size_t point = 0; point < pointCount(); ++point) {
        scaled.push_back((values[order[starts[point]]] - minimum) / range);
    }
}

std::vector<std::size_t> KrigingCases::rowsAt(std::size_t point) const
{
    const auto begin = order.begin();
    return {begin + static_cast<std::ptrdiff_t>(starts[point]),
            begin + static_cast<std::ptrdiff_t>(starts[point + 1])};
}

std::vector<std::vector<double>>
KrigingCases::inputsAt(const std::vector<std::size_t>& points) const
{
    std::vector<std::vector<double>> columns(inputs, std::vector<double>(points.size(), 0.0));
    for (std::size_t k = 0; k < active.size(); ++k) {
        const double* coordinates = scaled.data() + k * pointCount();
        for (std::size_t i = 0; i < points.size(); ++i) {
            columns[active[k]][i] = minima[k] + ranges[k] * coordinates[points[i]];
        }
    }
    return columns;
}
