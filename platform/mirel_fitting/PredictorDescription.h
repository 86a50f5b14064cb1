#pragma once

#include <mirel_fitting/OutputTransform.h>

#include <cstddef>
#include <vector>

/**
 * Everything that the prediction of one output is computed from, as numbers: what an exported model
 * consists of.
 *
 *   polynomial: v = offset + sum of b_t t(z)
 *   Kriging:    v = offset + scale (sum of b_t t(2 u - 1) + sum over j of w_j c(u, u_j))
 *
 * The output is v, or the one whose transform is v.
 *
 * The coordinates z or u are (x - origin) / unit of the inputs that have an influence, u clamped to
 * -1e150 ... 1e150. The terms t are products of up to two coordinates. The correlation is
 *
 *   c(u, u_j) = product over the coordinates k of (1 + s + s^2 / 3) exp(-s),
 *   s = sqrt(5) |u_k - u_jk| / length_k, at most 1000.
 *
 * A point with a coordinate that is not finite has no prediction: NaN.
 */
struct PredictorDescription
{
    /** Which of the two formulas. */
    enum class Kind
    {
        Polynomial, ///< the first
        Kriging     ///< the second
    };

    /** In a Term: no such factor. */
    static constexpr std::size_t noFactor = static_cast<std::size_t>(-1);

    /** The range of one input over the cases. */
    struct InputRange
    {
        double minimum = 0.0;    ///< in the unit of the input; finite
        double maximum = 0.0;    ///< likewise, at least the minimum
        bool isConstant = false; ///< up to rounding
    };

    /** (x - origin) / unit of one input. */
    struct Coordinate
    {
        std::size_t input = 0; ///< its position among `inputs`
        double origin = 0.0;   ///< finite, in the unit of the input
        double unit = 1.0;     ///< positive; of a polynomial a power of two
    };

    /** b_t t: positions among the coordinates, first <= second; a linear term has no second, the
     *  constant neither. */
    struct Term
    {
        std::size_t first = noFactor;  ///< of the first factor
        std::size_t second = noFactor; ///< of the second, the same for a square
        double coefficient = 0.0;      ///< b_t, finite
    };

    Kind kind = Kind::Polynomial;        ///< which formula v is computed by
    std::vector<InputRange> inputs;      ///< all of the model, in the order of its columns
    std::vector<Coordinate> coordinates; ///< z or u, those that have an influence
    std::vector<Term> terms;             ///< of the polynomial, which for Kriging is the trend
    double offset = 0.0;                 ///< finite
    double scale = 1.0;                  ///< Kriging: the standard deviation of v over the cases
    OutputTransform transform = OutputTransform::None; ///< of which v is the value

    // Kriging only; the correlation is without effect where there is no case.
    std::vector<double> lengths; ///< one per coordinate; infinite: no influence
    std::vector<double> cases;   ///< by columns, weights.size() of each coordinate
    std::vector<double> weights; ///< w_j, one per case
};
