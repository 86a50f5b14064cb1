#include <mirel_fitting/kriging/fit/DistinctCases.h>

#include <mirel_fitting/cases/MergedOutput.h>
#include <mirel_fitting/cases/ReplicatedCases.h>
#include <mirel_fitting/kriging/report/KrigingWarnings.h>

#include <cmath>

DistinctCases::DistinctCases(const KrigingFitInput& input, std::vector<std::string>& warnings)
    : input(input)
{
    const MergedOutput output(input.cases, input.scale.standardise(input.output));
    merged.cases = input.cases.pointCount();
    merged.inputs = input.cases.activeInputs().size();
    merged.coordinates = input.cases.coordinates();
    merged.output = output.means;
    merged.replicates = replicates = output.replicates;
    merged.withinSquares = withinSquares = output.withinSquares;
    conflicts = output.conflicts;
    if (input.options.isNuggetFixed()) {
        // Replicates that differ are unlikely under a nugget that was not fitted to them, and
        // infinitely so under none: their mean is then a case like the others.
        merged.averageReplicates();
    }
    if (output.copies > 0) {
        warnings.push_back(KrigingWarnings::ofCopies(output.copies, conflicts == 0));
    }
    // More, in standard deviations, than a smooth function changes over such a distance.
    constexpr double largestChange = 1e-6;
    const std::size_t places = ReplicatedCases(merged.columns(), merged.cases)
                                   .contradictions(merged.output.data(), largestChange);
    if (places > 0) {
        warnings.push_back(KrigingWarnings::ofContradictions(places));
    }
}

double DistinctCases::withinDeviation(std::size_t point) const
{
    return std::sqrt(withinSquares[point] / replicates[point]);
}

void DistinctCases::warnOfConflicts(bool interpolates, KrigingFit& fit) const
{
    if (conflicts == 0) {
        return;
    }
    const std::string sentence = KrigingWarnings::ofReplicatesThatDiffer(conflicts, interpolates);
    if (interpolates) {
        fit.warnings.push_back(sentence);
    } else {
        fit.addNote(sentence);
    }
}

void DistinctCases::addErrors(KrigingFit& fit, const KrigingData& fitted,
                              const std::vector<double>& residuals,
                              const KrigingLeaveOneOut::Points& leftOut) const
{
    input.report().measure(
        fit, {fitted, replicates, withinSquares, leftOut.points, residuals, leftOut.residuals});
    fit.leftOut = KrigingLeaveOneOut(input.cases, input.output, fitted, leftOut, input.scale.offset,
                                     input.scale.scale);
}
