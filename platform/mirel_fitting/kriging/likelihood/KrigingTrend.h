#pragma once

#include <mirel_fitting/cases/KrigingData.h>
#include <mirel_fitting/numerics/OrthonormalColumns.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <memory>
#include <vector>

/**
 * The trend of universal Kriging: a polynomial of order 0, 1 or 2 in coordinates that run from -1
 * to 1 over the cases; terms in the order 1, V1, V2, ..., V1^2, V1 V2, ....
 */
class KrigingTrend
{
public:
    /**
     * The order is the highest up to `highestOrder` with no more parameters than cases, which are
     * the terms and `otherParameters`. Terms that are a linear combination of
     * earlier ones at the cases are dropped. Calls FitProgress::advance() for each term.
     * @param coordinates by columns, cases x inputs, each input over [0, 1].
     */
    KrigingTrend(std::size_t cases, std::size_t inputs, const std::vector<double>& coordinates,
                 int highestOrder, std::size_t otherParameters);

    /** The trend of these cases, as above; `data` receives its terms. */
    static std::shared_ptr<const KrigingTrend> of(KrigingData& data, int highestOrder,
                                                  std::size_t otherParameters);

    /** A trend of these terms, to be evaluated only: it has no cases. */
    explicit KrigingTrend(std::vector<QuadraticBasis::Term> terms);

    int order() const { return usedOrder; }
    /** Number of terms kept. */
    std::size_t size() const { return terms.size(); }
    /** Of the coordinates that centred() gives. */
    const std::vector<QuadraticBasis::Term>& keptTerms() const { return terms; }
    /** From a coordinate over [0, 1] to one over [-1, 1]. */
    static double centred(double coordinate) { return 2.0 * coordinate - 1.0; }
    /** The terms at the cases, by columns, cases x size(). */
    const std::vector<double>& matrix() const { return values; }

    struct LeastSquares
    {
        std::vector<double> coefficients;
        std::vector<double> residuals;
        /** The sum of squares of the residuals over cases minus terms; 0 if there are no more cases
         *  than terms. */
        double variance;
        /** By the fit to all other cases; NaN where those do not determine the trend. */
        std::vector<double> leaveOneOutResiduals;
        /** Of the latter, relative to `variance`. */
        std::vector<double> leaveOneOutVariances;
    };
    /** The trend without correlations, fitted to one output per case. */
    LeastSquares leastSquares(const std::vector<double>& output) const;

    /** Of the coordinates that centred() gives. */
    const std::vector<QuadraticBasis::Term>& droppedTerms() const { return dropped; }

    /** result[i] += value of the polynomial at point i; `points` as scaled coordinates. */
    void add(const std::vector<const double*>& points, std::size_t count,
             const std::vector<double>& coefficients, double* result) const;

    /** result[t * stride + i] = kept term t at point i. */
    void evaluate(const std::vector<const double*>& points, std::size_t count, double* result,
                  std::size_t stride) const;

    /** gradients[k][i] += derivative of the polynomial by coordinate k of point i. */
    void addGradients(const std::vector<const double*>& points, std::size_t count,
                      const std::vector<double>& coefficients,
                      const std::vector<double*>& gradients) const;

private:
    using Term = QuadraticBasis::Term;

    static void evaluate(const Term& term, const std::vector<const double*>& points,
                         std::size_t count, double* column);

    int usedOrder = 0;
    std::vector<Term> terms;
    std::vector<Term> dropped;
    std::vector<double> values;
    OrthonormalColumns orthonormal{0, 0}; // of the matrix
};
