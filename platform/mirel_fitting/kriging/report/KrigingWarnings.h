#pragma once

#include <mirel_fitting/numerics/InputNames.h>
#include <mirel_fitting/polynomial/QuadraticBasis.h>

#include <cstddef>
#include <string>
#include <vector>

/** Sentences about the cases and options of a fit and about how its model came about. What the
 *  model is worth says KrigingTexts::verdicts(). */
class KrigingWarnings
{
public:
    /** @param input counted from 0. */
    static std::string ofConstantInputs(const std::vector<std::size_t>& inputs,
                                        const InputNames& names = InputNames());

    /** @param areMerged whether repeated cases count once, not as replicates. */
    static std::string ofCopies(std::size_t copies, bool areMerged);

    /** Cases next to each other that contradict each other. */
    static std::string ofContradictions(std::size_t places);

    /** Cases at the same point with different outputs. */
    static std::string ofReplicatesThatDiffer(std::size_t points, bool interpolates);

    /** The trend became constant since cases are few and the output is smooth. */
    static std::string ofSmoothOutput(int from, std::size_t cases);
    static std::string ofTooFewCases(int from, int to, std::size_t cases);
    static std::string ofDroppedTerms(const std::vector<QuadraticBasis::Term>& terms,
                                      const InputNames& names = InputNames());
    static std::string ofRaisedNugget(double nugget);
    /** The correlation lengths are below the spacing of the cases. */
    static std::string ofShortLengths();

    /**
     * Lengths and nugget were estimated from a subset.
     * @param max        cases up to which all are used.
     * @param searched   cases of the subset.
     * @param areRefined whether the lengths changed in steps with all cases.
     */
    static std::string ofSubset(std::size_t max, std::size_t searched, bool areRefined);

    /** The layers of the model of many cases. */
    struct Layers
    {
        std::size_t subset;     ///< cases of the exact model
        std::size_t neighbours; ///< of a prediction by the second layer; 0: there is none
        bool isSubsetUsed;      ///< or only the trend of its model
        double error;           ///< of the model at left-out cases, in the output's unit
        double subsetError;     ///< the same of the exact model alone
    };
    /** @param max cases up to which there is one layer. */
    static std::string ofManyCases(std::size_t max, const Layers& layers);

    /** Nothing varies: the prediction is the mean of the output.
     *  @param isSame whether it is the output of each case. */
    static std::string ofMean(std::size_t cases, bool isSame);
    /** The trend leaves only rounding. */
    static std::string ofExactTrend();

    /** The error metrics are those of a random sample. */
    static std::string ofSample(std::size_t cases);
};
