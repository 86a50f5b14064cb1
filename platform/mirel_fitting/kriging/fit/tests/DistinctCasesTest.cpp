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

} // namespace

TEST(DistinctCases, MergesReplicatesIntoTheirMean)
{
    const Merged merged({2.0, 6.0, 8.0, 10.0});

    EXPECT_EQ(merged.distinct.data().output, (std::vector<double>{2.0, 4.0, 5.0}));
    EXPECT_EQ(merged.distinct.data().replicates, (std::vector<double>{2.0, 1.0, 1.0}));
    EXPECT_EQ(merged.distinct.withinDeviation(0), 1.0);
    EXPECT_EQ(merged.distinct.withinDeviation(1), 0.0);

    const Merged once({2.0, 6.0, 8.0, 10.0}, withFixedNugget(0.0, {}));

    EXPECT_EQ(once.distinct.data().replicates, (std::vector<double>{1.0, 1.0, 1.0}));
    EXPECT_FALSE(once.distinct.data().hasPureError());
    EXPECT_EQ(once.distinct.withinDeviation(0), 1.0);
}

TEST(DistinctCases, WarnsOfReplicatesThatDifferAndOfCopies)
{
    using Texts = std::vector<std::string>;
    const std::string differ =
        "At 1 point several cases have the same inputs but different outputs: ";
    const Texts none;
    const Texts copies = {"1 case repeats another case exactly and was merged with it."};
    const Texts passedThrough = {differ + "the model passes through their mean."};
    const Texts smoothed = {differ + "the model smooths them."};
    struct
    {
        double second; // output of the first point, which is 2 before
        bool interpolates;
        Texts warnings;
        Texts ofFit;
        Texts notes;
    } const rows[] = {{6.0, true, none, passedThrough, none},
                      {6.0, false, none, smoothed, smoothed},
                      {2.0, true, copies, none, none}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.second) + (row.interpolates ? ", interpolated" : ""));
        const Merged merged({2.0, row.second, 8.0, 10.0});
        KrigingFit fit{KrigingPredictor(FittedKriging())};

        merged.distinct.warnOfConflicts(row.interpolates, fit);

        EXPECT_EQ(merged.warnings, row.warnings);
        EXPECT_EQ(fit.warnings, row.ofFit);
        EXPECT_EQ(fit.notes, row.notes);
    }
}
