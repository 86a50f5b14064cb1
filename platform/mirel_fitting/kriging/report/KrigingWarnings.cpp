#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/numerics/NumberText.h>
#include <mirel_fitting/numerics/TextPieces.h>

namespace {

std::string orderLowered(int from, int to)
{
    return "The order of the trend was lowered from " + std::to_string(from) + " to " +
           std::to_string(to) + ": ";
}

} // namespace

std::string KrigingWarnings::ofConstantInputs(const std::vector<std::size_t>& inputs,
                                              const InputNames& names)
{
    return names.list(inputs) + (inputs.size() == 1 ? " is constant over the cases and was ignored."
                                                    : " are constant over the cases and were "
                                                      "ignored.");
}

std::string KrigingWarnings::ofCopies(std::size_t copies, bool areMerged)
{
    return countedText(copies, "case") + (copies == 1 ? " repeats" : " repeat") +
           " another case exactly and " + (copies == 1 ? "was" : "were") +
           (areMerged ? " merged with it."
                      : " counted as measured again, since other cases with the same inputs have "
                        "different outputs.");
}

std::string KrigingWarnings::ofContradictions(std::size_t places)
{
    return "At " + countedText(places, "place") + " cases lie next to each other (less than " +
           NumberText::rounded(ReplicatedCases::nearness) +
           " of the range of every input apart) but have different outputs: the model smooths "
           "them.";
}

std::string KrigingWarnings::ofReplicatesThatDiffer(std::size_t points, bool interpolates)
{
    return "At " + countedText(points, "point") +
           " several cases have the same inputs but different outputs: the model " +
           (interpolates ? "passes through their mean." : "smooths them.");
}

std::string KrigingWarnings::ofSmoothOutput(int from, std::size_t cases)
{
    return orderLowered(from, 0) + "the cases show no noise, and from " +
           countedText(cases, "distinct case") +
           " a constant trend predicts a smooth output better.";
}

std::string KrigingWarnings::ofTooFewCases(int from, int to, std::size_t cases)
{
    return orderLowered(from, to) + countedText(cases, "distinct case") +
           (cases == 1 ? " is" : " are") + " too few for more.";
}

std::string KrigingWarnings::ofDroppedTerms(const std::vector<QuadraticBasis::Term>& terms,
                                            const InputNames& names)
{
    std::vector<std::string> list;
    for (const QuadraticBasis::Term& term : terms) {
        list.push_back(QuadraticBasis::name(term, names));
    }
    return "Terms of the trend that the cases cannot separate were dropped: " + listedText(list) +
           ".";
}

std::string KrigingWarnings::ofRaisedNugget(double nugget)
{
    return "The nugget was raised to " + NumberText::shortest(nugget) +
           ": with less the correlation matrix cannot be factorised.";
}

std::string KrigingWarnings::ofShortLengths()
{
    return "The correlation lengths are below the spacing of the cases: the model follows single "
           "cases and says little of what lies between them.";
}

std::string KrigingWarnings::ofSubset(std::size_t max, std::size_t searched, bool areRefined)
{
    return "There are more than " + std::to_string(max) +
           " distinct cases: the model is the exact one of all of them, with the correlation "
           "lengths of " +
           countedText(searched, "case") + " spread over all" +
           (areRefined ? ", refined with all." : ".");
}

std::string KrigingWarnings::ofManyCases(std::size_t max, const Layers& layers)
{
    const std::string start = "There are more than " + std::to_string(max) + " distinct cases: ";
    const std::string ofSubset = std::to_string(layers.subset) + " cases";
    const std::string spread = "the model is that of " + ofSubset + " spread over all of them, ";
    if (layers.neighbours == 0) {
        return start + spread + "which the nearest cases of each point could not improve.";
    }
    return start + (layers.isSubsetUsed ? spread + "corrected by " : "the model is ") +
           "Kriging from the " + std::to_string(layers.neighbours) +
           " nearest cases of each point; left-out cases are predicted with an error of " +
           NumberText::rounded(layers.error) + " instead of " +
           NumberText::rounded(layers.subsetError) +
           (layers.isSubsetUsed ? " without" : " by a model of " + ofSubset) + ".";
}

std::string KrigingWarnings::ofMean(std::size_t cases, bool isSame)
{
    if (!isSame) {
        return "No input varies over the cases: the prediction is the mean output.";
    }
    return cases > 1 ? "The output is the same in all cases: the prediction is constant."
                     : "There is only one case: the prediction is constant.";
}

std::string KrigingWarnings::ofExactTrend()
{
    return "The trend passes through all cases: there is nothing left to correlate.";
}

std::string KrigingWarnings::ofSample(std::size_t cases)
{
    return "The figures of errors are those of a random sample of " +
           countedText(cases, "distinct case") + ".";
}
