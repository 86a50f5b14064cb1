#include <mirel_fitting/KrigingCases.h>

#include <mirel_fitting/ColumnScale.h>
#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

KrigingCases::KrigingCases(const std::vector<double*>& columns, std::size_t rows)
    : rows(rows), inputs(columns.size()), order(rows)
{
    for (std::size_t k = 0; k < inputs; ++k) {
        const auto [smallest, largest] = std::minmax_element(columns[k], columns[k] + rows);
        if (std::isinf(*largest - *smallest)) {
            throw SurrogateModelInterface::Error("The values of the input V" +
                                                 std::to_string(k + 1) +
                                                 " lie too far apart: their range is no number.");
        }
        if (!ColumnScale(columns[k], rows).isConstantUpToRounding()) {
            active.push_back(k);
            minima.push_back(*smallest);
            ranges.push_back(*largest - *smallest);
        }
    }

    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto compare = [&](std::size_t a, std::size_t b) {
        for (const std::size_t k : active) {
            if (columns[k][a] != columns[k][b]) {
                return columns[k][a] < columns[k][b] ? -1 : 1;
            }
        }
        return 0;
    };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const int sign = compare(a, b);
        return sign != 0 ? sign < 0 : a < b;
    });
    for (std::size_t i = 0; i < rows; ++i) {
        if (i == 0 || compare(order[i - 1], order[i]) != 0) {
            starts.push_back(i);
        }
    }
    starts.push_back(rows);

    scaled.reserve(pointCount() * active.size());
    for (std::size_t k = 0; k < active.size(); ++k) {
        for (std::size_t point = 0; point < pointCount(); ++point) {
            const double x = columns[active[k]][order[starts[point]]];
            scaled.push_back((x - minima[k]) / ranges[k]);
        }
    }
}

std::size_t KrigingCases::rowCount() const
{
    return rows;
}

std::size_t KrigingCases::inputCount() const
{
    return inputs;
}

std::size_t KrigingCases::pointCount() const
{
    return starts.size() - 1;
}

std::vector<std::size_t> KrigingCases::rowsAt(std::size_t point) const
{
    const auto begin = order.begin();
    return {begin + static_cast<std::ptrdiff_t>(starts[point]),
            begin + static_cast<std::ptrdiff_t>(starts[point + 1])};
}

const std::vector<std::size_t>& KrigingCases::activeInputs() const
{
    return active;
}

const std::vector<double>& KrigingCases::minimum() const
{
    return minima;
}

const std::vector<double>& KrigingCases::range() const
{
    return ranges;
}

const std::vector<double>& KrigingCases::coordinates() const
{
    return scaled;
}
