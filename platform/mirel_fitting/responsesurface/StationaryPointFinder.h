#pragma once

#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/polynomial/PolynomialFit.h>

#include <cstddef>
#include <optional>
#include <vector>

/**
 * The canonical analysis of a fitted quadratic polynomial: with inputs x coded to [-1, 1],
 * y = b0 + b'x + x'Bx is stationary at x = -B^-1 b / 2, and the eigenvalues of B say whether that
 * is a minimum, a maximum, a saddle or a ridge. Along a direction whose eigenvalue is 0 up to
 * rounding, the point nearest to the middle of the ranges is taken. The eigenvectors are the
 * canonical directions, and the ridges of ascent and descent follow from them (RidgeAnalysis).
 * Myers, Montgomery, Anderson-Cook: Response Surface Methodology, 4th ed., Wiley 2016, 6.3.
 */
class StationaryPointFinder
{
public:
    /** @param fit is borrowed; it must outlive this object. `output` is a position in outputs(). */
    StationaryPointFinder(const PolynomialFit& fit, std::size_t output);

    /** Whether any eigenvalue of B exceeds rounding. */
    bool isCurved() const;

    /** As ResponseSurfaceStatistics says. */
    std::vector<CanonicalDirection> canonicalDirections() const;

    /** The path of the largest values, or of the smallest, without standard errors.
     *  @param steps the distances are 0, 1 / steps, ..., 1. */
    std::vector<RidgePoint> ridge(bool isAscending, std::size_t steps) const;

    /** None without curvature, or if the polynomial rises along a direction without curvature. */
    std::optional<StationaryPoint> find() const;

private:
    bool hasSecondOrderTerms() const;
    void decompose();
    void findSlopes();
    void takeGradientForDirection();
    std::vector<double> atCoordinates(const std::vector<double>& canonical) const;
    std::vector<double> inUnits(const std::vector<double>& coded) const;
    bool isFlat(std::size_t k) const;
    StationaryPoint::Nature nature() const;
    double valueAt(const std::vector<double>& coded) const;

    const PolynomialFit& fit;
    const PolynomialFit::Output& output;
    std::vector<double> coefficients; // for coded inputs, one per term of the basis
    std::vector<std::size_t> inputs;  // those that the polynomial has
    std::vector<double> eigenvalues;  // of B, ascending; 0 along the gradient of a linear one
    std::vector<double> directions;   // eigenvectors, a column per eigenvalue of inputs.size()
    std::vector<double> slopes;       // b along each direction
    double rounding = 0.0;            // eigenvalues and slopes up to this count as 0
};
