#include <mirel_fitting/kriging/grid/KrigingLine.h>

#include <mirel_fitting/kriging/correlation/MaternKernels.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr std::size_t lanes = MaternKernels::lanes;
constexpr std::size_t gapNumbers = MaternKernels::gapNumbers;
constexpr std::size_t blockSize = 1024;
constexpr std::size_t chunkSize = 8 * blockSize;

/** Sums of weights times t^q exp(-t) about a moving anchor. */
struct Moments
{
    long double m[3] = {};

    void moveBy(long double d, long double decay)
    {
        m[2] = decay * (m[2] + d * (2.0L * m[1] + d * m[0]));
        m[1] = decay * (m[1] + d * m[0]);
        m[0] = decay * m[0];
    }

    /** The polynomial that exp(-u) is multiplied with. */
    void write(double* coefficients) const
    {
        coefficients[0] = static_cast<double>(m[0] + m[1] + m[2] / 3.0L);
        coefficients[1] = static_cast<double>(m[0] + m[1] * 2.0L / 3.0L);
        coefficients[2] = static_cast<double>(m[0] / 3.0L);
    }
};

} // namespace

/** Some blocks of points. */
class KrigingLine::Worker : public OrderedChunks::Worker
{
public:
    Worker(const KrigingLine& line, double* result)
        : line(line), coordinates(blockSize), x(blockSize), sums(blockSize),
          laneGaps(gapNumbers * lanes), result(result)
    {}

    void compute(std::size_t chunk) override
    {
        const std::size_t end = std::min((chunk + 1) * chunkSize, line.grid.rowCount());
        for (std::size_t first = chunk * chunkSize; first < end; first += blockSize) {
            computeBlock(first, std::min(blockSize, end - first));
        }
    }

    // Results are written where they belong.
    void handOver(std::size_t) override {}

private:
    void computeBlock(std::size_t first, std::size_t count)
    {
        const KrigingPredictor::Parts& parts = line.parts;
        const std::size_t row = line.grid.firstRow() + first;
        const double* column = line.columns[parts.inputs[line.input]] + row;
        for (std::size_t i = 0; i < count; ++i) {
            coordinates[i] =
                std::isfinite(column[i]) ? parts.coordinate(line.input, column[i]) : 0.0;
        }
        parts.correlation->scale(line.input, coordinates.data(), count, x.data());
        std::fill(x.data() + count, x.data() + AlignedBuffer::padded(count), x.data()[count - 1]);
        sumBlock(AlignedBuffer::padded(count));

        double* target = result + first;
        for (std::size_t i = 0; i < count; ++i) {
            const double c = KrigingTrend::centred(coordinates[i]);
            const double trend = line.trend[0] + c * (line.trend[1] + c * line.trend[2]);
            target[i] = parts.offset + parts.scale * (trend + sums.data()[i]);
        }
        for (const std::size_t varying : line.grid.axes()[0].columns) {
            const double* values = line.columns[varying] + row;
            for (std::size_t i = 0; i < count; ++i) {
                // 0 times a finite number is 0, and NaN otherwise.
                target[i] += 0.0 * values[i];
            }
        }
    }

    /** As many panels as lie in one gap at a time. */
    void sumBlock(std::size_t count)
    {
        const MaternKernels& kernels = MaternKernels::best();
        std::size_t i = 0;
        while (i < count) {
            std::size_t end = i + lanes;
            if (isWithinGap(i)) {
                while (end < count && isWithinGap(end)) {
                    end += lanes;
                }
                takeGap();
            } else {
                takeGaps(i);
            }
            kernels.sumGaps(x.data() + i, end - i, laneGaps.data(), sums.data() + i);
            i = end;
        }
    }

    /** Whether a panel is in the present gap. */
    bool isWithinGap(std::size_t panel) const
    {
        const double* values = x.data() + panel;
        bool isInside = true;
        for (std::size_t r = 0; r < lanes; ++r) {
            isInside = isInside && lower <= values[r] && values[r] < upper;
        }
        return isInside;
    }

    void takeGap()
    {
        for (std::size_t r = 0; r < lanes; ++r) {
            setLane(r);
        }
    }

    /** Of each point of a panel; the last one becomes the present one. */
    void takeGaps(std::size_t panel)
    {
        for (std::size_t r = 0; r < lanes; ++r) {
            const double value = x.data()[panel + r];
            if (!(lower <= value && value < upper)) {
                findGap(value);
            }
            setLane(r);
        }
    }

    void findGap(double value)
    {
        const double infinity = std::numeric_limits<double>::infinity();
        const std::vector<double>& cases = line.cases;
        // Values mostly ascend: the next gap first.
        if (gap + 1 < cases.size() && cases[gap] <= value && value < cases[gap + 1]) {
            ++gap;
        } else {
            gap = static_cast<std::size_t>(std::upper_bound(cases.begin(), cases.end(), value) -
                                           cases.begin());
        }
        lower = gap == 0 ? -infinity : cases[gap - 1];
        upper = gap == cases.size() ? infinity : cases[gap];
    }

    void setLane(std::size_t lane)
    {
        for (std::size_t q = 0; q < gapNumbers; ++q) {
            laneGaps.data()[q * lanes + lane] = line.gaps[gap * gapNumbers + q];
        }
    }

    const KrigingLine& line;
    std::vector<double> coordinates;
    AlignedBuffer x; // scaled
    AlignedBuffer sums;
    AlignedBuffer laneGaps;
    std::size_t gap = 0; // the present one, from `lower` to before `upper`: none yet
    double lower = 0.0;
    double upper = 0.0;
    double* result;
};

KrigingLine::KrigingLine(const KrigingPredictor::Parts& parts, const std::vector<double*>& columns,
                         const ProductGrid& grid)
    : parts(parts), columns(columns), grid(grid)
{
    const MaternCorrelation& correlation = *parts.correlation;
    std::vector<double> weights = parts.weights;
    std::vector<double> fixed(parts.inputs.size(), 0.0);
    for (const std::size_t column : grid.constantColumns()) {
        isNowhereFinite = isNowhereFinite || !std::isfinite(columns[column][grid.firstRow()]);
    }
    AlignedBuffer factor(correlation.correlationStride());
    for (std::size_t k = 0; k < parts.inputs.size() && !isNowhereFinite; ++k) {
        const std::vector<std::size_t>& constants = grid.constantColumns();
        if (!std::binary_search(constants.begin(), constants.end(), parts.inputs[k])) {
            input = k;
            continue;
        }
        fixed[k] = parts.coordinate(k, columns[parts.inputs[k]][grid.firstRow()]);
        correlation.correlateInput(k, &fixed[k], 1, factor.data());
        for (std::size_t j = 0; j < weights.size(); ++j) {
            weights[j] *= factor.data()[j];
        }
    }
    if (!isNowhereFinite) {
        prepareGaps(std::move(weights));
        prepareTrend(fixed);
    }
}

void KrigingLine::prepareGaps(std::vector<double> weights)
{
    const double* z = parts.correlation->scaledCases(input);
    std::vector<std::size_t> order(weights.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [z](std::size_t a, std::size_t b) { return z[a] != z[b] ? z[a] < z[b] : a < b; });
    for (const std::size_t j : order) {
        cases.push_back(z[j]);
    }

    const std::size_t count = cases.size();
    gaps.assign((count + 1) * gapNumbers, 0.0);
    std::vector<long double> distances(count, 0.0L);
    std::vector<long double> decays(count, 0.0L);
    for (std::size_t j = 1; j < count; ++j) {
        distances[j] = std::min<long double>(static_cast<long double>(cases[j]) - cases[j - 1],
                                             MaternKernels::farthest);
        decays[j] = std::exp(-distances[j]);
    }
    Moments left;
    for (std::size_t j = 0; j < count; ++j) {
        left.moveBy(distances[j], decays[j]);
        left.m[0] += weights[order[j]];
        double* gap = gaps.data() + (j + 1) * gapNumbers;
        gap[0] = cases[j];
        left.write(gap + 1);
    }
    Moments right;
    for (std::size_t j = count; j-- > 0;) {
        if (j + 1 < count) {
            right.moveBy(distances[j + 1], decays[j + 1]);
        }
        right.m[0] += weights[order[j]];
        double* gap = gaps.data() + j * gapNumbers + gapNumbers / 2;
        gap[0] = cases[j];
        right.write(gap + 1);
    }
}

void KrigingLine::prepareTrend(const std::vector<double>& fixed)
{
    for (std::size_t t = 0; t < parts.coefficients.size(); ++t) {
        const QuadraticBasis::Term term = parts.trend->keptTerms()[t];
        double coefficient = parts.coefficients[t];
        std::size_t power = 0;
        for (const std::size_t factor : {term.first, term.second}) {
            if (factor == input) {
                ++power;
            } else if (factor != QuadraticBasis::noInput) {
                coefficient *= KrigingTrend::centred(fixed[factor]);
            }
        }
        trend[power] += coefficient;
    }
}

void KrigingLine::predict(int threads, double* result) const
{
    if (isNowhereFinite) {
        std::fill_n(result, grid.rowCount(), std::numeric_limits<double>::quiet_NaN());
        return;
    }
    OrderedChunks::run((grid.rowCount() + chunkSize - 1) / chunkSize, threads,
                       [&] { return std::make_unique<Worker>(*this, result); }, nullptr);
}
