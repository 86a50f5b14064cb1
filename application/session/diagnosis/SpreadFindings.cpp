#include "session/diagnosis/SpreadFindings.h"

#include "session/diagnosis/FindingWords.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

using Column = DiagnosedCases::Column;
using FindingWords::names;

namespace {
struct Edge
{
    std::size_t from;
    std::size_t to;
    double length;
};

/** Row by row, each input scaled to its range. */
class ScaledPoints
{
public:
    explicit ScaledPoints(const DiagnosedCases& cases) : count(cases.count())
    {
        constexpr std::size_t minValues = 8;
        for (const Column& input : cases.inputs) {
            if (distinctValues(input.values, minValues) == minValues) {
                columns.push_back(&input);
            }
        }
        coordinates.resize(count * columns.size());
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const double minimum = columns[k]->minimum();
            const double range = columns[k]->range();
            for (std::size_t row = 0; row < count; ++row) {
                coordinates[row * columns.size() + k] = (columns[k]->values[row] - minimum) / range;
            }
        }
    }

    double distance(std::size_t left, std::size_t right) const
    {
        double squares = 0.0;
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const double difference = coordinate(left, k) - coordinate(right, k);
            squares += difference * difference;
        }
        return std::sqrt(squares);
    }

    double coordinate(std::size_t row, std::size_t k) const
    {
        return coordinates[row * columns.size() + k];
    }

    std::vector<Edge> spanningTree() const
    {
        std::vector<Edge> tree;
        std::vector<double> nearest(count, std::numeric_limits<double>::infinity());
        std::vector<std::size_t> neighbour(count, 0);
        std::vector<bool> isIn(count, false);
        std::size_t last = 0;
        isIn[0] = true;
        for (std::size_t step = 1; step < count; ++step) {
            std::size_t next = count;
            for (std::size_t row = 0; row < count; ++row) {
                if (isIn[row]) {
                    continue;
                }
                const double length = distance(last, row);
                if (length < nearest[row]) {
                    nearest[row] = length;
                    neighbour[row] = last;
                }
                next = next == count || nearest[row] < nearest[next] ? row : next;
            }
            tree.push_back({neighbour[next], next, nearest[next]});
            isIn[next] = true;
            last = next;
        }
        return tree;
    }

    std::size_t count;
    std::vector<const Column*> columns;

private:
    std::vector<double> coordinates;
};

/** The rows on one side of an edge of the tree. */
std::vector<bool> sideOf(const std::vector<Edge>& tree, const Edge& cut, std::size_t count)
{
    std::vector<bool> side(count, false);
    side[cut.to] = true;
    for (bool grows = true; grows;) {
        grows = false;
        for (const Edge& edge : tree) {
            if (&edge != &cut && side[edge.from] != side[edge.to]) {
                side[edge.from] = true;
                side[edge.to] = true;
                grows = true;
            }
        }
    }
    return side;
}

/** The inputs in which the groups differ. */
std::vector<std::string> differingInputs(const ScaledPoints& points, const std::vector<bool>& side)
{
    constexpr double minDifference = 0.25; // of the range, between the means
    std::vector<std::string> columns;
    for (std::size_t k = 0; k < points.columns.size(); ++k) {
        double sums[2] = {0.0, 0.0};
        double counts[2] = {0.0, 0.0};
        for (std::size_t row = 0; row < points.count; ++row) {
            sums[side[row] ? 1 : 0] += points.coordinate(row, k);
            counts[side[row] ? 1 : 0] += 1.0;
        }
        if (std::fabs(sums[0] / counts[0] - sums[1] / counts[1]) > minDifference) {
            columns.push_back(points.columns[k]->name);
        }
    }
    return columns;
}

/** How large the groups are; of a sample only the shares are known. */
std::string sizesText(std::size_t members, const DiagnosedCases& cases)
{
    if (!cases.isSample) {
        return std::to_string(members) + " and " + std::to_string(cases.count() - members);
    }
    const double share = static_cast<double>(members) / static_cast<double>(cases.count());
    return "about " + FindingWords::percent(share) + " and " + FindingWords::percent(1.0 - share);
}
} // namespace

std::vector<Finding> SpreadFindings::find(const DiagnosedCases& cases)
{
    constexpr std::size_t minCases = 12;
    constexpr double farther = 3.0; // than nearly all other edges
    constexpr double farEnough = 0.3;
    std::vector<Finding> findings;
    const ScaledPoints points(cases);
    if (points.count < minCases || points.columns.size() < 2) {
        return findings;
    }
    const std::vector<Edge> tree = points.spanningTree();
    std::vector<double> lengths;
    for (const Edge& edge : tree) {
        lengths.push_back(edge.length);
    }
    std::sort(lengths.begin(), lengths.end());
    const double usual = lengths[lengths.size() * 9 / 10 - 1];
    const Edge& longest =
        *std::max_element(tree.begin(), tree.end(), [](const Edge& left, const Edge& right) {
            return left.length < right.length;
        });
    if (longest.length < farther * usual || longest.length < farEnough) {
        return findings;
    }

    std::vector<bool> side = sideOf(tree, longest, points.count);
    std::size_t members = static_cast<std::size_t>(std::count(side.begin(), side.end(), true));
    if (2 * members > points.count) {
        side.flip();
        members = points.count - members;
    }
    const std::vector<std::string> columns = differingInputs(points, side);
    const std::string where = columns.empty() ? "" : " in " + names(columns);
    if (members >= std::max<std::size_t>(3, points.count / 10)) {
        findings.push_back(Finding(
            "clusters", Finding::Warning, columns,
            "The cases form two groups, of " + sizesText(members, cases) + ", that lie apart" +
                where +
                ": predictions between them rest on the model's form alone; add cases there or "
                "model each group by itself."));
        return findings;
    }
    if (cases.isSample) { // others may lie near them
        return findings;
    }
    std::vector<std::size_t> lonely;
    for (std::size_t row = 0; row < points.count; ++row) {
        if (side[row]) {
            lonely.push_back(row);
        }
    }
    if (lonely.size() > 3) {
        return findings;
    }
    const bool isOne = lonely.size() == 1;
    const std::string them = isOne ? "it" : "them";
    findings.push_back(Finding("lonelyCases", Finding::Warning, columns,
                               FindingWords::casesFirst(cases.positionsOf(lonely)) +
                                   (isOne ? " lies" : " lie") + " far from all others" + where +
                                   ": the model follows " + them + " there, and a fault in " +
                                   them + " would not show; check " + them +
                                   " or add cases there."));
    return findings;
}
