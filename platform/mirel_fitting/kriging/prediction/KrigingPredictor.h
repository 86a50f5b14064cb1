#pragma once

#include <mirel_fitting/kriging/prediction/FittedKriging.h>

#include <cstddef>
#include <memory>
#include <vector>

class KrigingVariance;

/**
 * Predictions and standard errors of one fitted Kriging model, point by point. Points are given as
 * one column of coordinates per input of the model's cases, those that do not vary included. A
 * point with a coordinate that is not finite, in any column, gets NaN.
 *
 * Points are taken in blocks: the memory does not grow with their number. As many threads work as
 * setThreadCount() allows, with the same bits for any number of them.
 */
class KrigingPredictor
{
public:
    explicit KrigingPredictor(FittedKriging model);

    const FittedKriging& model() const { return fitted; }

    /** Predictions at rows `first` to `first + count` of the columns. */
    void predict(const std::vector<double*>& columns, std::size_t first, std::size_t count,
                 double* result) const;

    /** Adds the predictions of the second layer, by the nearest neighbours, to those of the first;
     *  nothing if the model has no neighbours. */
    void addNeighbours(const std::vector<double*>& columns, std::size_t first, std::size_t count,
                       double* result) const;

    /**
     * Derivatives of the prediction, in the output's unit per unit of the column: one array of
     * `count` numbers per column, 0 for a column that is no input that varies. NaN where a
     * prediction is NaN.
     */
    void differentiate(const std::vector<double*>& columns, std::size_t count,
                       const std::vector<double*>& gradients) const;

    /**
     * Standard errors in the output's unit, NaN where a prediction is NaN. The first call
     * factorises the correlation matrix of the cases and keeps the factor: n^3 / 6 multiplications
     * and n^2 numbers for n cases; each point costs n^2. Of a model with neighbours that is so for
     * points outside the ranges of the cases only, and n is the subset's size.
     * @param ofObservation whether to include the noise of a new case.
     */
    void standardErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                        double* result) const;

private:
    class Block;

    FittedKriging modelOfProcess() const;
    void exactErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                     double* result) const;
    void neighbourErrors(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                         double* result) const;
    void raiseOutside(const std::vector<double*>& columns, std::size_t count, bool ofObservation,
                      double* result) const;
    bool isOutside(const std::vector<double*>& columns, std::size_t point) const;

    FittedKriging fitted;
    mutable std::shared_ptr<const KrigingVariance> variance; // null until the first standard errors
};
