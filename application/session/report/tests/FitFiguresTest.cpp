#include <session/report/FitFigures.h>

#include <session/model/Evaluator.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(FitFigures, SaysHowIntervalsWereCalibratedAndWhatThoseByStudentsTHold)
{
    OutputFit fit;
    fit.calibration = CalibrationReport{CalibrationReport::Basis::Refits,
                                        1.3125,
                                        247,
                                        {{0.5, 0.61}, {0.8, 0.76}, {0.95, 0.8834}, {0.99, 0.96}}};
    const auto lastFigures = [&] {
        const auto figures = FitFigures::of(fit, {}, nullptr);
        return FitFigures::Figures(figures.end() - 2, figures.end());
    };

    EXPECT_EQ(
        lastFigures(),
        (FitFigures::Figures{
            {"95 % intervals", "1.31 times as wide as by Student's t, calibrated by refits "
                               "without the left-out cases"},
            {"by Student's t they would hold", "61, 76, 88.3, 96 % of the left-out cases (50, "
                                               "80, 95, 99 % intervals)"}}));

    fit.calibration->basis = CalibrationReport::Basis::LeaveOneOut;
    EXPECT_EQ(lastFigures()[0].second,
              "1.31 times as wide as by Student's t, calibrated by leave-one-out");
    fit.calibration->basis = CalibrationReport::Basis::Distribution;
    EXPECT_EQ(lastFigures()[0].second, "by Student's t");
    EXPECT_EQ(lastFigures()[1].first, "intervals held");
}

TEST(FitFigures, ListsManyInputsWithoutInfluenceInOneFigure)
{
    OutputFit fit;
    fit.kriging.emplace();
    std::vector<std::string> inputs;
    for (int i = 1; i <= 30; ++i) {
        inputs.push_back("x" + std::to_string(i));
        fit.kriging->correlationLengths.push_back(i == 1 ? 0.5 : 300.0);
        fit.kriging->lengthBounds.push_back(i == 1 ? KrigingReport::Bound::None
                                                   : KrigingReport::Bound::Upper);
        fit.kriging->isWithoutInfluence.push_back(i > 4);
    }

    FitFigures::Figures lengths;
    for (const auto& figure : FitFigures::of(fit, inputs, nullptr)) {
        if (figure.first.find("correlation length") != std::string::npos) {
            lengths.push_back(figure);
        }
    }

    EXPECT_EQ(lengths,
              (FitFigures::Figures{
                  {"correlation length of x1", "0.5"},
                  {"correlation length of x2", "300 (no influence beyond the trend)"},
                  {"correlation length of x3", "300 (no influence beyond the trend)"},
                  {"correlation length of x4", "300 (no influence beyond the trend)"},
                  {"26 correlation lengths", "x5, x6, x7, x8, x9 and 21 more (no influence)"}}));
}
