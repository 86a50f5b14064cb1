#include <mirel_fitting/kriging/fit/DistinctCases.h>

#include "KrigingFitTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

/** Three points, the first of which has two replicates. */
struct Merged
{
    explicit Merged(const std::vector<double>& values, const KrigingFitOptions& wanted = {})
        : output(values), options(wanted), distinct(input, warnings)
    {}

    Columns inputs = {{0.0, 0.0, 0.5, 1.0}};
    std::vector<double> output;
    KrigingFitOptions options;
    KrigingCases cases{pointersTo(inputs), 4};
    KrigingFitInput input{cases, output, options, {0.0, 2.0}};
    std::vector<std::string> warnings;
    DistinctCases distinct;
};

KrigingFit emptyFit()
{
    return KrigingFit{KrigingPredictor(FittedKriging())};
}

KrigingFitOptions withFixedNugget()
{
    KrigingFitOptions options;
    options.nuggetMode = KrigingOptions::NuggetMode::Fixed;
    return options;
}

} // namespace

TEST(DistinctCases, MergesReplicatesIntoTheirMean)
{
    const Merged merged({2.0, 6.0, 8.0, 10.0});

    EXPECT_EQ(merged.distinct.data().output, (std::vector<double>{2.0, 4.0, 5.0}));
    EXPECT_EQ(merged.distinct.data().replicates, (std::vector<double>{2.0, 1.0, 1.0}));
    EXPECT_EQ(merged.distinct.withinDeviation(0), 1.0);
    EXPECT_EQ(merged.distinct.withinDeviation(1), 0.0);

    const Merged once({2.0, 6.0, 8.0, 10.0}, withFixedNugget());

    EXPECT_EQ(once.distinct.data().replicates, (std::vector<double>{1.0, 1.0, 1.0}));
    EXPECT_FALSE(once.distinct.data().hasPureError());
    EXPECT_EQ(once.distinct.withinDeviation(0), 1.0);
}

TEST(DistinctCases, WarnsOfReplicatesThatDiffer)
{
    const Merged merged({2.0, 6.0, 8.0, 10.0});
    KrigingFit fit = emptyFit();

    merged.distinct.warnOfConflicts(true, fit);

    EXPECT_TRUE(merged.warnings.empty());
    EXPECT_EQ(fit.warnings,
              (std::vector<std::string>{
                  "At 1 point several cases have the same inputs but different outputs: the model "
                  "passes through their mean."}));
    EXPECT_TRUE(fit.notes.empty());
}

TEST(DistinctCases, NotesReplicatesThatAreSmoothed)
{
    const Merged merged({2.0, 6.0, 8.0, 10.0});
    KrigingFit fit = emptyFit();

    merged.distinct.warnOfConflicts(false, fit);

    EXPECT_EQ(fit.warnings,
              (std::vector<std::string>{
                  "At 1 point several cases have the same inputs but different outputs: the model "
                  "smooths them."}));
    EXPECT_EQ(fit.notes, fit.warnings);
}

TEST(DistinctCases, WarnsOfCopies)
{
    const Merged merged({2.0, 2.0, 8.0, 10.0});
    KrigingFit fit = emptyFit();

    merged.distinct.warnOfConflicts(true, fit);

    EXPECT_TRUE(fit.warnings.empty());
    EXPECT_EQ(merged.warnings, (std::vector<std::string>{
                                   "1 case repeats another case exactly and was merged with it."}));
}
