#include <mirel_fitting/polynomial/PolynomialGrid.h>

#include <mirel_fitting/machine/SimdLanes.h>

#include <algorithm>

namespace {

/** So many values in a row are worth preparing a run. */
constexpr std::size_t longEnough = 64;

/** The tables of so many points stay in a first-level cache while the runs pass over them. */
constexpr std::size_t pointsAtATime = 1024;

/** sum += factor * values */
SURROGATE_SIMD void add(double factor, const double* values, std::size_t count, double* sum)
{
    for (std::size_t i = 0; i < count; ++i) {
        sum[i] += factor * values[i];
    }
}

/** sum += first * second */
SURROGATE_SIMD void addProduct(const double* first, const double* second, std::size_t count,
                               double* sum)
{
    for (std::size_t i = 0; i < count; ++i) {
        sum[i] += first[i] * second[i];
    }
}

/** result = values + constant + slope * z */
SURROGATE_SIMD void addLine(const double* values, double constant, double slope, const double* z,
                            std::size_t count, double* result)
{
    for (std::size_t i = 0; i < count; ++i) {
        result[i] = (values[i] + constant) + slope * z[i];
    }
}

} // namespace

PolynomialGrid::PolynomialGrid(const PolynomialPredictor& predictor,
                               const std::vector<double*>& columns, const ProductGrid& grid)
    : predictor(predictor)
{
    fast.points = runLength(grid);
    slow.points = grid.rowCount() / fast.points;
    std::vector<bool> isFast(columns.size(), false);
    for (const ProductGrid::Axis& axis : grid.axes()) {
        for (const std::size_t column : axis.columns) {
            isFast[column] = axis.stride < fast.points;
        }
    }
    for (std::size_t input = 0; input < columns.size(); ++input) {
        (isFast[input] ? fast : slow).inputs.push_back(input);
    }
    read(columns, grid.firstRow(), 1, fast);
    read(columns, grid.firstRow(), fast.points, slow);
}

/** The fewest of the fastest axes that make runs long enough. */
std::size_t PolynomialGrid::runLength(const ProductGrid& grid)
{
    std::size_t length = 1;
    for (const ProductGrid::Axis& axis : grid.axes()) {
        if (length >= longEnough) {
            break;
        }
        length *= axis.size;
    }
    return length;
}

bool PolynomialGrid::isWorthwhile(const ProductGrid& grid, std::size_t inputs)
{
    const std::size_t length = runLength(grid);
    std::size_t fastInputs = 0;
    for (const ProductGrid::Axis& axis : grid.axes()) {
        fastInputs += axis.stride < length ? axis.columns.size() : 0;
    }
    return length >= longEnough && fastInputs < inputs;
}

std::vector<ProductGrid> PolynomialGrid::cut(const ProductGrid& grid, std::size_t most)
{
    std::vector<ProductGrid> result;
    for (const ProductGrid& part : grid.cut(most)) {
        // A short axis and a long one make a run that is too long: it is cut as well.
        const std::size_t length = runLength(part);
        const std::size_t mostRows = length <= most ? most * length : most;
        for (const ProductGrid& piece : part.cutRows(mostRows)) {
            result.push_back(piece);
        }
    }
    return result;
}

/** @param step rows from one point of the side to the next. */
void PolynomialGrid::read(const std::vector<double*>& columns, std::size_t first, std::size_t step,
                          Side& side) const
{
    side.notFinite.assign(side.points, 0.0);
    side.coordinates.resize(side.inputs.size() * side.points);
    double* z = side.coordinates.data();
    for (const std::size_t input : side.inputs) {
        const double* column = columns[input] + first;
        const PolynomialPredictor::Scale& scale = predictor.inputScales()[input];
        const double perUnit = 1.0 / scale.unit;
        for (std::size_t i = 0; i < side.points; ++i) {
            const double value = column[i * step];
            *z++ = (value - scale.centre) * perUnit;
            // 0 times a finite number is 0, and NaN otherwise. An input without influence counts.
            side.notFinite[i] += 0.0 * value;
        }
    }
}

/** The polynomial with the inputs of the other side in the middle of their ranges. */
std::vector<double> PolynomialGrid::alone(const Output& output, const Side& side) const
{
    const QuadraticBasis& basis = predictor.basis();
    std::vector<double> values(side.notFinite);
    if (basis.order() == 0) {
        return values;
    }
    std::vector<double> slope(side.points);
    for (std::size_t k = 0; k < side.inputs.size(); ++k) {
        const std::size_t i = side.inputs[k];
        std::fill(slope.begin(), slope.end(), output.coefficients[1 + i]);
        for (std::size_t m = k; basis.order() == 2 && m < side.inputs.size(); ++m) {
            add(output.coefficients[basis.productOf(i, side.inputs[m])], side.values(m),
                side.points, slope.data());
        }
        addProduct(slope.data(), side.values(k), side.points, values.data());
    }
    return values;
}

/** What each run adds to the slope of each fast input, one input after the other. */
std::vector<double> PolynomialGrid::slopes(const Output& output) const
{
    const QuadraticBasis& basis = predictor.basis();
    std::vector<double> result(fast.inputs.size() * slow.points, 0.0);
    for (std::size_t k = 0; basis.order() == 2 && k < fast.inputs.size(); ++k) {
        for (std::size_t m = 0; m < slow.inputs.size(); ++m) {
            const auto [first, second] = std::minmax(fast.inputs[k], slow.inputs[m]);
            add(output.coefficients[basis.productOf(first, second)], slow.values(m), slow.points,
                result.data() + k * slow.points);
        }
    }
    return result;
}

void PolynomialGrid::predict(const Output& output, double* result) const
{
    const std::vector<double> ofFast = alone(output, fast);
    std::vector<double> ofSlow = alone(output, slow);
    for (double& value : ofSlow) {
        value += output.constant;
    }
    std::vector<double> slope = slopes(output);
    const double* z = fast.values(0);
    if (fast.inputs.empty()) { // the rows repeat, or there is one: nothing has a slope
        slope.assign(slow.points, 0.0);
        z = ofFast.data();
    }
    for (std::size_t start = 0; start < fast.points; start += pointsAtATime) {
        const std::size_t count = std::min(pointsAtATime, fast.points - start);
        for (std::size_t run = 0; run < slow.points; ++run) {
            double* const part = result + run * fast.points + start;
            addLine(ofFast.data() + start, ofSlow[run], slope[run], z + start, count, part);
            for (std::size_t k = 1; k < fast.inputs.size(); ++k) {
                add(slope[k * slow.points + run], fast.values(k) + start, count, part);
            }
        }
    }
}
