#include <mirel_fitting/responsesurface/CaseSupport.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t pointsPerChunk = 4096;

/** A hundredth of a range beyond the cases is no extrapolation: it takes the fourth power of a
 *  coded coordinate, and with it the leverage, from 1 to 1.02^4 = 1.08. */
constexpr double negligibleOfLeverage = 0.1;
constexpr double negligibleOfRange = 0.01;

} // namespace

CaseSupport::CaseSupport(const PolynomialFit& fit, const CaseRanges& ranges)
    : fit(fit), ranges(ranges)
{
    for (const PolynomialFit::Dependence& one : fit.dependences()) {
        if (one.term <= fit.basis().inputs()) {
            relations.push_back(&one);
        }
    }
}

std::vector<char> CaseSupport::unsupported(const std::vector<double*>& points,
                                           std::size_t count) const
{
    std::vector<char> flags(count, 0);
    const std::size_t chunks = (count + pointsPerChunk - 1) / pointsPerChunk;
    OrderedChunks::runEach(chunks, threadCount(), [&] {
        return [&, columns = std::vector<std::vector<double>>(points.size(),
                                                              std::vector<double>(pointsPerChunk))](
                   std::size_t chunk) mutable {
            const std::size_t first = chunk * pointsPerChunk;
            const std::size_t rows = std::min(pointsPerChunk, count - first);
            for (std::size_t input = 0; input < points.size(); ++input) {
                ranges.clamp(input, points[input] + first, rows, columns[input].data());
            }
            judge(columns, rows, flags.data() + first);
        };
    });
    return flags;
}

void CaseSupport::judge(std::vector<std::vector<double>>& columns, std::size_t count,
                        char* flags) const
{
    std::vector<double*> pointers;
    for (std::vector<double>& column : columns) {
        pointers.push_back(column.data());
    }
    std::vector<double> leverages(count);
    fit.variances(pointers, count, leverages.data());
    const double largest = fit.largestLeverage() * (1.0 + negligibleOfLeverage);
    for (std::size_t i = 0; i < count; ++i) {
        flags[i] = leverages[i] > largest ? 1 : 0;
    }
    for (const PolynomialFit::Dependence* const relation : relations) {
        const ColumnScale& scale = fit.inputScales()[relation->term - 1];
        for (std::size_t i = 0; i < count; ++i) {
            double difference = relation->combination[0];
            for (std::size_t input = 0; input < columns.size(); ++input) {
                const ColumnScale& other = fit.inputScales()[input];
                const double coefficient =
                    relation->combination[1 + input] - (1 + input == relation->term ? 1.0 : 0.0);
                difference += coefficient * ((columns[input][i] - other.centre()) / other.unit());
            }
            if (std::fabs(difference) * scale.unit() > negligibleOfRange * scale.spread()) {
                flags[i] = 1;
            }
        }
    }
}
