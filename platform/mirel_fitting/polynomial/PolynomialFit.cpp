#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/machine/AlignedBuffer.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>
#include <mirel_fitting/numerics/BlockedLeastSquares.h>
#include <mirel_fitting/numerics/ProductKernels.h>
#include <mirel_fitting/polynomial/NormalEquations.h>
#include <mirel_fitting/polynomial/QuadraticProducts.h>

#include <cblas.h>

#include <algorithm>
#include <limits>
#include <random>
#include <utility>

namespace {

constexpr std::size_t rowsPerBlock = BlockedLeastSquares::rowsPerBlock;

/** What a thread takes at a time. Fixed, so that the results do not depend on the machine; enough
 *  rows that merging the factors of two chunks does not count. */
constexpr std::size_t rowsPerChunk = 32 * rowsPerBlock;

/** Terms in the order in which they are preferred: what an earlier one explains, a later one need
 *  not. */
std::vector<std::size_t> preferenceOrder(const QuadraticBasis& basis,
                                         const std::vector<char>& isWanted)
{
    std::vector<std::size_t> order;
    std::vector<std::size_t> products;
    order.reserve(basis.size());
    for (std::size_t term = 0; term < basis.size(); ++term) {
        if (!isWanted.empty() && !isWanted[term]) {
            continue;
        }
        const QuadraticBasis::Term& inputs = basis.terms()[term];
        const bool isProduct =
            inputs.second != QuadraticBasis::noInput && inputs.first != inputs.second;
        (isProduct ? products : order).push_back(term);
    }
    order.insert(order.end(), products.begin(), products.end());
    return order;
}

/**
 * A term of second order is worth keeping only beside the linear terms of its inputs: where one of
 * those is dropped, the input is a combination of others, and so is every product with it. Besides,
 * only such a set of terms stays the same when an input is shifted.
 */
std::vector<BlockedLeastSquares::Column> describe(const QuadraticBasis& basis,
                                                  const std::vector<std::size_t>& order,
                                                  const std::vector<ColumnScale>& scales)
{
    std::vector<BlockedLeastSquares::Column> columns(order.size());
    std::vector<std::size_t> columnOfTerm(basis.size(), BlockedLeastSquares::Column::noParent);
    for (std::size_t column = 0; column < order.size(); ++column) {
        columnOfTerm[order[column]] = column;
    }
    for (std::size_t column = 0; column < order.size(); ++column) {
        const QuadraticBasis::Term& inputs = basis.terms()[order[column]];
        if (inputs.first == QuadraticBasis::noInput) {
            continue;
        }
        columns[column].rounding = scales[inputs.first].rounding();
        columns[column].isConstant = scales[inputs.first].isConstantUpToRounding();
        if (inputs.second != QuadraticBasis::noInput) {
            columns[column].rounding += scales[inputs.second].rounding();
            columns[column].parents[0] = columnOfTerm[1 + inputs.first];
            columns[column].parents[1] = columnOfTerm[1 + inputs.second];
        }
    }
    return columns;
}

} // namespace

namespace {

double squaresAbout(double mean, const double* values, std::size_t count)
{
    // Several sums: one would wait for itself.
    double sums[4] = {};
    std::size_t k = 0;
    for (; k + 4 <= count; k += 4) {
        for (std::size_t lane = 0; lane < 4; ++lane) {
            const double deviation = values[k + lane] - mean;
            sums[lane] += deviation * deviation;
        }
    }
    for (; k < count; ++k) {
        sums[0] += (values[k] - mean) * (values[k] - mean);
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

} // namespace

/** The columns during construction: borrowed values, and what the passes make of them. */
struct PolynomialFit::Columns
{
    const std::vector<double*>& independents;
    const std::vector<double*>& dependents;
    std::vector<double> scaledCoefficients;     // of the kept terms, per output
    std::unique_ptr<NormalEquations> equations; // null: the factor was rotated
    double told = 0.0;                          // of the work, whether or not it came to anything
};

/** Walks over the rows of a chunk in blocks of scaled inputs and outputs. */
class PolynomialFit::Pass : public OrderedChunks::Worker
{
public:
    Pass(PolynomialFit& fit, Columns& columns)
        : fit(fit), columns(columns), scaledInputs(columns.independents.size() * rowsPerBlock),
          scaledOutputs(columns.dependents.size() * rowsPerBlock),
          design(fit.polynomial.size() * rowsPerBlock)
    {
        for (std::size_t input = 0; input < columns.independents.size(); ++input) {
            inputColumns.push_back(scaledInputs.data() + input * rowsPerBlock);
        }
        for (std::size_t output = 0; output < columns.dependents.size(); ++output) {
            outputColumns.push_back(scaledOutputs.data() + output * rowsPerBlock);
        }
    }

    /** @param told of the first row of each block; on the calling thread. */
    void reportTo(std::function<void(std::size_t row)> told) { report = std::move(told); }

    void compute(std::size_t chunk) override
    {
        begin();
        const std::size_t first = chunk * rowsPerChunk;
        const std::size_t last = std::min(first + rowsPerChunk, fit.caseCount);
        for (std::size_t start = first; start < last; start += rowsPerBlock) {
            if (report) {
                report(start);
            }
            const std::size_t rows = std::min(rowsPerBlock, last - start);
            for (std::size_t input = 0; input < columns.independents.size(); ++input) {
                fit.scales[input].apply(columns.independents[input] + start, rows,
                                        scaledInputs.data() + input * rowsPerBlock);
            }
            for (std::size_t output = 0; output < columns.dependents.size(); ++output) {
                fit.fits[output].scale.apply(columns.dependents[output] + start, rows,
                                             scaledOutputs.data() + output * rowsPerBlock);
            }
            addBlock(start, rows);
        }
    }

protected:
    virtual void begin() = 0;
    virtual void addBlock(std::size_t start, std::size_t rows) = 0;

    void fillDesign(const std::vector<std::size_t>& terms, std::size_t rows)
    {
        for (std::size_t column = 0; column < terms.size(); ++column) {
            fit.polynomial.evaluateTerm(terms[column], inputColumns.data(), rows,
                                        design.data() + column * rowsPerBlock);
        }
    }

    /** All terms in the order of the basis, and the outputs, filled up with zeros to what the
     *  kernels take; answers how many rows that is. */
    std::size_t fillForKernels(std::size_t rows)
    {
        const std::size_t filled =
            (rows + ProductKernels::step - 1) / ProductKernels::step * ProductKernels::step;
        fit.polynomial.evaluate(inputColumns.data(), rows, design.data(), rowsPerBlock);
        for (std::size_t term = 0; rows < filled && term < fit.polynomial.size(); ++term) {
            std::fill_n(design.data() + term * rowsPerBlock + rows, filled - rows, 0.0);
        }
        for (std::size_t output = 0; output < columns.dependents.size(); ++output) {
            std::fill_n(scaledOutputs.data() + output * rowsPerBlock + rows, filled - rows, 0.0);
        }
        return filled;
    }

    ProductKernels::Columns terms() const
    {
        return {design.data(), rowsPerBlock, fit.polynomial.size()};
    }

    PolynomialFit& fit;
    Columns& columns;
    AlignedBuffer scaledInputs;
    AlignedBuffer scaledOutputs;
    AlignedBuffer design;
    std::vector<const double*> inputColumns;
    std::vector<const double*> outputColumns;

private:
    std::function<void(std::size_t row)> report; // null on other threads
};

/** The normal equations. */
class PolynomialFit::ProductSums : public PolynomialFit::Pass
{
public:
    ProductSums(PolynomialFit& fit, Columns& columns)
        : Pass(fit, columns), sums(columns.equations->products(), columns.dependents.size())
    {}

    void handOver(std::size_t) override { columns.equations->add(sums); }

private:
    void begin() override { sums.clear(); }

    void addBlock(std::size_t, std::size_t rows) override
    {
        const std::size_t filled = fillForKernels(rows);
        sums.addProducts(terms(), filled);
        sums.addOutputs(outputColumns, terms(), filled);
    }

    NormalEquations::Sums sums;
};

class PolynomialFit::Factorisation : public PolynomialFit::Pass
{
public:
    Factorisation(PolynomialFit& fit, Columns& columns, const std::vector<std::size_t>& order,
                  BlockedLeastSquares& total)
        : Pass(fit, columns), order(order), total(total), part(emptyPart())
    {}

    void handOver(std::size_t) override { total.merge(std::move(part)); }

private:
    BlockedLeastSquares emptyPart() const { return {order.size(), columns.dependents.size()}; }

    void begin() override { part = emptyPart(); }

    void addBlock(std::size_t, std::size_t rows) override
    {
        fillDesign(order, rows);
        part.addRows(design.data(), scaledOutputs.data(), rows);
    }

    const std::vector<std::size_t>& order;
    BlockedLeastSquares& total;
    BlockedLeastSquares part;
};

class PolynomialFit::Residuals : public PolynomialFit::Pass
{
public:
    Residuals(PolynomialFit& fit, Columns& columns)
        : Pass(fit, columns), freedom(rowsPerBlock), squares(columns.dependents.size()),
          leftOutSquares(columns.dependents.size()), totalSquares(columns.dependents.size())
    {
        if (columns.equations) {
            gradients = std::make_unique<NormalEquations::Sums>(columns.equations->products(),
                                                                columns.dependents.size());
        }
    }

    void handOver(std::size_t) override
    {
        for (std::size_t output = 0; output < squares.size(); ++output) {
            fit.fits[output].residualSquares += squares[output];
            fit.fits[output].press += leftOutSquares[output];
            fit.fits[output].totalSquares += totalSquares[output];
        }
        if (gradients) {
            columns.equations->addGradients(*gradients);
        }
        fit.pressAvailable = fit.pressAvailable && !isDeterminedAlone(1.0 - leastFreedom);
    }

private:
    void begin() override
    {
        std::fill(squares.begin(), squares.end(), 0.0);
        std::fill(leftOutSquares.begin(), leftOutSquares.end(), 0.0);
        std::fill(totalSquares.begin(), totalSquares.end(), 0.0);
        leastFreedom = 1.0;
        if (gradients) {
            gradients->clear();
        }
    }

    void addBlock(std::size_t start, std::size_t rows) override
    {
        if (columns.equations) {
            subtractByKernels(rows);
        } else {
            subtract(rows);
        }
        leastFreedom =
            std::min(leastFreedom, *std::min_element(freedom.data(), freedom.data() + rows));
        for (std::size_t output = 0; output < squares.size(); ++output) {
            const double* residuals = scaledOutputs.data() + output * rowsPerBlock;
            for (std::size_t row = 0; row < rows; ++row) {
                const double leftOut = residuals[row] / freedom.data()[row];
                squares[output] += residuals[row] * residuals[row];
                leftOutSquares[output] += leftOut * leftOut;
            }
        }
        keepSample(start, rows);
    }

    /** Each worker writes other elements than the others. */
    void keepSample(std::size_t start, std::size_t rows)
    {
        const std::vector<std::size_t>& sample = fit.sample;
        const bool isWhole = sample.empty();
        const auto position = [&](std::size_t row) {
            return static_cast<std::size_t>(std::lower_bound(sample.begin(), sample.end(), row) -
                                            sample.begin());
        };
        const std::size_t last = isWhole ? start + rows : position(start + rows);
        for (std::size_t k = isWhole ? start : position(start); k < last; ++k) {
            const std::size_t row = fit.sampledRow(k);
            // Rounding takes the leverage of a case that stands alone beyond 1.
            fit.leverageOfSample[k] = std::clamp(1.0 - freedom.data()[row - start], 0.0, 1.0);
            for (std::size_t output = 0; output < squares.size(); ++output) {
                fit.fits[output].values[k] = columns.dependents[output][row];
                fit.fits[output].residuals[k] =
                    scaledOutputs.data()[output * rowsPerBlock + row - start];
            }
        }
    }

    void subtract(std::size_t rows)
    {
        const auto m = static_cast<int>(rows);
        const auto terms = static_cast<int>(fit.keptTerms.size());
        const auto ld = static_cast<int>(rowsPerBlock);
        fillDesign(fit.keptTerms, rows);
        if (!squares.empty()) {
            cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, m,
                        static_cast<int>(squares.size()), terms, -1.0, design.data(), ld,
                        columns.scaledCoefficients.data(), terms, 1.0, scaledOutputs.data(), ld);
        }
        measureFreedom(m, terms, ld);
    }

    /** 1 minus the leverage of each case, which is the squared length of its row of the orthonormal
     *  factor: leaving the case out divides its residual by it. */
    void measureFreedom(int rows, int terms, int ld)
    {
        cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit, rows, terms,
                    1.0, fit.factor.data(), terms, design.data(), ld);
        std::fill_n(freedom.data(), rows, 1.0);
        for (int term = 0; term < terms; ++term) {
            const double* column = design.data() + static_cast<std::size_t>(term) * rowsPerBlock;
            for (int row = 0; row < rows; ++row) {
                freedom.data()[row] -= column[row] * column[row];
            }
        }
    }

    /** The same, and what the residuals say about the coefficients. */
    void subtractByKernels(std::size_t rows)
    {
        const std::size_t filled = fillForKernels(rows);
        const NormalEquations& equations = *columns.equations;
        for (std::size_t output = 0; output < squares.size(); ++output) {
            double* values = scaledOutputs.data() + output * rowsPerBlock;
            totalSquares[output] += squaresAbout(equations.mean(output), values, rows);
            equations.subtract(columns.scaledCoefficients.data() + output * fit.polynomial.size(),
                               terms(), filled, values);
        }
        std::fill_n(freedom.data(), filled, 1.0);
        equations.subtractLeverages(terms(), filled, freedom.data());
        gradients->addOutputs(outputColumns, terms(), filled);
    }

    AlignedBuffer freedom;
    double leastFreedom = 1.0;
    std::vector<double> squares;
    std::vector<double> leftOutSquares;
    std::vector<double> totalSquares; // by kernels only
    std::unique_ptr<NormalEquations::Sums> gradients;
};

PolynomialFit::PolynomialFit(const QuadraticBasis& basis, const std::vector<double*>& independents,
                             const std::vector<double*>& dependents, std::size_t cases,
                             const std::vector<char>& isWanted)
    : polynomial(basis), caseCount(cases), wanted(isWanted)
{
    for (const double* column : independents) {
        scales.emplace_back(column, cases);
    }
    for (const double* column : dependents) {
        fits.emplace_back();
        fits.back().scale = ColumnScale(column, cases);
    }
    Columns columns{independents, dependents, {}, nullptr};
    const SingleThreadedBlas singleThreaded;
    chooseSample();
    const auto residuals = [&] { return std::make_unique<Residuals>(*this, columns); };
    if (wanted.empty() && solveNormalEquations(columns)) {
        walk(residuals, 0.4, 0.7);
        refine(columns);
    } else {
        factorise(columns);
        walk(residuals, 0.7, 1.0);
    }
    storeCoefficients(columns);
}

bool PolynomialFit::solveNormalEquations(Columns& columns)
{
    // Fewer take no time whichever way.
    constexpr std::size_t fewestCases = 4096;
    // More terms have more sums than a second-level cache holds.
    constexpr std::size_t mostTerms = 325;

    const bool isConstant = std::any_of(scales.begin(), scales.end(), [](const ColumnScale& scale) {
        return scale.isConstantUpToRounding();
    });
    if (caseCount < fewestCases || polynomial.size() > mostTerms || isConstant) {
        return false;
    }
    columns.equations =
        std::make_unique<NormalEquations>(polynomial, caseCount, columns.dependents.size());
    walk([&] { return std::make_unique<ProductSums>(*this, columns); }, 0.0, 0.4);
    columns.told = 0.4;
    if (!columns.equations->solve(factor, columns.scaledCoefficients)) {
        columns.equations.reset();
        return false;
    }
    keptFlags.assign(polynomial.size(), 1);
    for (std::size_t term = 0; term < polynomial.size(); ++term) {
        keptTerms.push_back(term);
    }
    return true;
}

/** What the sum of the residuals times the terms says that the coefficients lack. */
void PolynomialFit::refine(Columns& columns)
{
    // A residual that changes by less shows the same digits.
    constexpr double negligible = 1e-10;

    const double change = columns.equations->correct(columns.scaledCoefficients);
    double smallest = std::numeric_limits<double>::infinity();
    for (const Output& output : fits) {
        smallest = std::min(smallest, output.residualSquares);
    }
    if (!(change > negligible * negligible * smallest)) {
        return;
    }
    for (Output& output : fits) {
        output.totalSquares = 0.0;
        output.residualSquares = 0.0;
        output.press = 0.0;
    }
    pressAvailable = true;
    walk([&] { return std::make_unique<Residuals>(*this, columns); }, 0.7, 1.0);
}

void PolynomialFit::factorise(Columns& columns)
{
    const std::vector<std::size_t> order = preferenceOrder(polynomial, wanted);
    BlockedLeastSquares total(order.size(), columns.dependents.size());
    const auto factorisation = [&] {
        return std::make_unique<Factorisation>(*this, columns, order, total);
    };
    walk(factorisation, columns.told, 0.7);

    const BlockedLeastSquares::Solution solution = total.solve(describe(polynomial, order, scales));
    keptFlags.assign(polynomial.size(), 0);
    for (const std::size_t column : solution.kept) {
        keptTerms.push_back(order[column]);
        keptFlags[order[column]] = 1;
    }
    for (const BlockedLeastSquares::Dependence& one : solution.dependences) {
        dependentTerms.push_back({order[one.column], std::vector<double>(polynomial.size(), 0.0)});
        for (std::size_t k = 0; k < one.combination.size(); ++k) {
            dependentTerms.back().combination[keptTerms[k]] = one.combination[k];
        }
    }
    factor = solution.factor;
    columns.scaledCoefficients = solution.coefficients;
    for (std::size_t output = 0; output < fits.size(); ++output) {
        fits[output].totalSquares = solution.totalSquares[output];
    }
}

void PolynomialFit::walk(const std::function<std::unique_ptr<Pass>()>& makePass, double from,
                         double to) const
{
    const std::size_t chunks = (caseCount + rowsPerChunk - 1) / rowsPerChunk;
    // With more terms, a factor for each thread takes too much memory: 32 MB here.
    constexpr std::size_t mostTermsPerThread = 2000;
    const int threads = polynomial.size() < mostTermsPerThread ? threadCount() : 1;
    double told = from;
    const auto tell = [&] { FitProgress::report(told, "Fitting the response surface"); };
    const auto tellOfRow = [&](std::size_t row) {
        told = from + (to - from) * (static_cast<double>(row) / static_cast<double>(caseCount));
        tell();
    };
    // Other threads may take all chunks, and leave this one nothing to report before.
    tell();
    bool isFirst = true; // the one on the calling thread
    const auto makeWorker = [&]() -> std::unique_ptr<OrderedChunks::Worker> {
        std::unique_ptr<Pass> pass = makePass();
        if (isFirst) {
            pass->reportTo(tellOfRow);
        }
        isFirst = false;
        return pass;
    };
    OrderedChunks::run(chunks, threads, makeWorker, nullptr, tell);
}

void PolynomialFit::chooseSample()
{
    // One at random of each of as many stretches: what repeats itself from case to case cannot
    // hide.
    std::mt19937_64 generator(caseCount);
    const auto startOf = [&](std::size_t stretch) {
        return stretch * (caseCount / mostSampled) +
               stretch * (caseCount % mostSampled) / mostSampled;
    };
    for (std::size_t k = 0; k < mostSampled && caseCount > mostSampled; ++k) {
        sample.push_back(startOf(k) + generator() % (startOf(k + 1) - startOf(k)));
    }
    leverageOfSample.resize(std::min(caseCount, mostSampled));
    for (Output& output : fits) {
        output.values.resize(leverageOfSample.size());
        output.residuals.resize(leverageOfSample.size());
    }
}

bool PolynomialFit::isDeterminedAlone(double leverage)
{
    constexpr double enoughFreedom = 1e-9;
    return 1.0 - leverage <= enoughFreedom;
}

void PolynomialFit::storeCoefficients(const Columns& columns)
{
    const std::size_t kept = keptTerms.size();
    for (std::size_t output = 0; output < fits.size(); ++output) {
        Output& result = fits[output];
        result.coefficients.assign(polynomial.size(), 0.0);
        for (std::size_t k = 0; k < kept; ++k) {
            result.coefficients[keptTerms[k]] =
                columns.scaledCoefficients[output * kept + k] * result.scale.unit();
        }
    }
}

std::vector<double> PolynomialFit::coefficientDirection(std::size_t k) const
{
    const std::size_t kept = keptTerms.size();
    std::vector<double> column(k + 1, 0.0);
    column[k] = 1.0;
    cblas_dtrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasNonUnit, static_cast<int>(k + 1),
                factor.data(), static_cast<int>(kept), column.data(), 1);
    std::vector<double> direction(polynomial.size(), 0.0);
    for (std::size_t i = 0; i <= k; ++i) {
        direction[keptTerms[i]] = column[i];
    }
    return direction;
}

void PolynomialFit::variances(const std::vector<double*>& inputs, std::size_t count,
                              double* result) const
{
    const auto terms = static_cast<int>(keptTerms.size());
    const SingleThreadedBlas singleThreaded;
    std::vector<double> scaledInputs(inputs.size() * rowsPerBlock);
    std::vector<const double*> inputColumns;
    for (std::size_t input = 0; input < inputs.size(); ++input) {
        inputColumns.push_back(scaledInputs.data() + input * rowsPerBlock);
    }
    std::vector<double> design(keptTerms.size() * rowsPerBlock);
    for (std::size_t start = 0; start < count; start += rowsPerBlock) {
        const std::size_t rows = std::min(rowsPerBlock, count - start);
        std::fill_n(result + start, rows, 0.0);
        for (std::size_t input = 0; input < inputs.size(); ++input) {
            scales[input].apply(inputs[input] + start, rows,
                                scaledInputs.data() + input * rowsPerBlock);
            // 0 times a finite number is 0, and NaN otherwise. An input without influence counts.
            for (std::size_t row = 0; row < rows; ++row) {
                result[start + row] += 0.0 * inputs[input][start + row];
            }
        }
        for (std::size_t column = 0; column < keptTerms.size(); ++column) {
            polynomial.evaluateTerm(keptTerms[column], inputColumns.data(), rows,
                                    design.data() + column * rowsPerBlock);
        }
        cblas_dtrsm(CblasColMajor, CblasRight, CblasUpper, CblasNoTrans, CblasNonUnit,
                    static_cast<int>(rows), terms, 1.0, factor.data(), terms, design.data(),
                    static_cast<int>(rowsPerBlock));
        for (std::size_t column = 0; column < keptTerms.size(); ++column) {
            const double* values = design.data() + column * rowsPerBlock;
            for (std::size_t row = 0; row < rows; ++row) {
                result[start + row] += values[row] * values[row];
            }
        }
    }
}
