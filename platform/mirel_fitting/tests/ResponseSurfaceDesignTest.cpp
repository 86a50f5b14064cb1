// Weighted cases and blocks: the figures that response_surface_designs.R prints.

#include "ResponseSurfaceTestSupport.h"

#include <mirel_fitting/TransformedOutput.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

using namespace fittingtest;

namespace {

const CaseDesign weights = {{1, 2, 1, 3, 1, 2, 1, 1, 2, 1, 4}, {}};
const CaseDesign blocks = {{}, {4, 7, 4, 7, 9, 7, 4, 9, 7, 9, 9}};
const CaseDesign both = {weights.weights, blocks.blocks};

Model modelOf(const Cases& given, const CaseDesign& design,
              const ResponseSurfaceOptions& options = {})
{
    Cases cases = given;
    return {cases.inputPointers(), cases.outputPointers(), cases.count(), options, design};
}

struct Row
{
    std::size_t degreesOfFreedom;
    double sumOfSquares;
    double f;
    double p; ///< NaN: not compared
};

void expectRow(const AnovaRow& found, const Row& expected)
{
    EXPECT_EQ(found.degreesOfFreedom, expected.degreesOfFreedom) << found.source;
    EXPECT_NEAR(found.sumOfSquares, expected.sumOfSquares, 1e-10) << found.source;
    if (!std::isnan(expected.f)) {
        EXPECT_NEAR(found.f, expected.f, 1e-4) << found.source;
    }
    if (!std::isnan(expected.p)) {
        expectFigure(found.p, expected.p, found.source);
    }
}

constexpr double none = AnovaRow::none;

struct Figures
{
    const char* name;
    const CaseDesign& design;
    std::vector<double> coefficients; ///< of V1 and V2 as they are
    std::vector<double> errors;
    std::vector<double> codedErrors;
    std::vector<std::string> sources;
    std::vector<Row> anova;
    std::vector<Row> partial;
    /** R2, adjusted R2, residual standard deviation, PRESS, predicted R2, AICc. */
    std::vector<double> quality;
    /** Of cases 1, 4 and 11: residual, leverage, internally, externally studentised, Cook. */
    std::vector<std::vector<double>> cases;
    /** Of cases 1 and 4 by the fit to the others: prediction and standard error. */
    std::vector<std::vector<double>> leftOut;
    double prediction; ///< at (30, 5)
    double errorOfMean;
};

const Figures expectedFigures[] = {
    {"Weights",
     weights,
     {11.601030294396883491, -0.131925394578530419, -0.652091772874274778, 0.000281759126095211,
      0.009185041169915460, 0.019186217894079510},
     {2.424543422650225377, 0.056847509828591228, 0.602743318650524107, 0.000488371560501049,
      0.005450669491164126, 0.044059867087739443},
     {0.362084804078372, 0.465835767776560, 0.455880485673492, 0.705208533363517, 0.828501762656948,
      0.704957873403831},
     {"Model", "Linear", "Interaction", "Square", "Residual", "Lack of fit", "Pure error", "Total"},
     {{5, 11.89584130154, 3.9181, none},
      {2, 9.900320299593, 8.15210, 0.0266846710631085},
      {1, 1.660508198231, 2.73458, 0.1591037806713733},
      {2, 0.335012803712, 0.27586, 0.7697644878525367},
      {5, 3.036125457467, none, none},
      {3, 1.056125457467, 0.3556, none},
      {2, 1.98, none, none},
      {10, 14.931966759003, none, none}},
     {{1, 11.413398347508, 18.79599, 7.46097651768131e-03},
      {1, 0.060873942930, 0.10025, 7.64322870972944e-01},
      {1, 0.202117985513, 0.33286, 5.88983649318686e-01},
      {1, 1.724297608945, 2.83963, 1.52779323346372e-01},
      {1, 0.115144205713, 0.18962, 6.81386707890898e-01}},
     {0.79666942028007448, 0.59333884056014896, 0.77924648956112597, 14.84472852350612193,
      0.00584238077305199, 69.83716964314933762},
     {{0.562769896375572, 0.568322383357402, 0.836364865943103, 0.806615592187798,
       0.1534883939503233},
      {0.265441338287759, 0.827683067032051, 1.081458591560512, 1.105134518656752,
       0.9362776454202330},
      {-0.649970402290467, 0.499999953712656, -1.795077658047695, -2.692678266722199,
       0.5370505336357525}},
     {{3.29631902447815, 1.61623577345667}, {5.35957484435305, 1.39388022873386}},
     6.493804428994596,
     0.379133843573902},
    {"Blocks",
     blocks,
     {1.22201672351592e+01, -1.28625096679396e-01, -7.88405924775964e-01, 8.81600235091176e-05,
      1.11780184923878e-02, 1.98548925720137e-02},
     {2.092996377200993408, 0.049016824840360677, 0.523595864133707067, 0.000508959692461151,
      0.004429212980478966, 0.038043757491718740},
     {0.474373885422002, 0.383811585606842, 0.443140187608906, 0.734937795913902, 0.673240373032802,
      0.608700119867500},
     {"Model", "Blocks", "Linear", "Interaction", "Square", "Residual", "Lack of fit", "Pure error",
      "Total"},
     {{7, 19.02055349641, 5.9883, none},
      {2, 0.685151515152, 0.75498, 0.5425289518311042},
      {2, 15.321703344321, 16.88324, 0.0233079399581310},
      {1, 2.89, 6.36908, 0.0858971112126928},
      {2, 0.123698636940, 0.13631, 0.8776882342216104},
      {3, 1.361264685406, none, none},
      {2, 1.341264685406, 33.53162, none},
      {1, 0.02, none, none},
      {10, 20.381818181818, none, none}},
     {{2, 1.273357405536, 1.40313, none},
      {1, 13.042896269876, 28.74436, 0.01269866039436209},
      {1, 0.240595695495, 0.53023, 0.51919851858734689},
      {1, 0.013614382223, 0.03000, 0.87350934892327381},
      {1, 2.89, 6.36908, 0.08589711121269278},
      {1, 0.123591782874, 0.27238, 0.63782613108234743}},
     {0.933211812937272, 0.777372709790907, 0.673613312765759, 36.983451911526217,
      -0.814531538924123, 206.232355746941664},
     {{0.6542800258180388, 0.671748753167688, 1.6953126722124765, 6.7565682614349818,
       0.735207814089117062},
      {0.1477631317131826, 0.794247715068797, 0.4835964364695970, 0.4112078948669541,
       0.112846346813668952},
      {-0.2948954253092158, 0.611704347804563, -0.7025481749682929, -0.6275721448331831,
       0.097194406576240427}},
     {{2.606770630326715, 0.295006176589708}, {6.18183965605733, 1.74646535951122}},
     6.671803820214261,
     0.406927790154484},
    {"WeightsAndBlocks",
     both,
     {1.22155514629660e+01, -1.24155956299621e-01, -8.04862943528800e-01, 7.93833950262501e-05,
      1.01504761809125e-02, 2.37083157624101e-02},
     {1.913424823053581525, 0.045974704258015787, 0.461964456446700089, 0.000482779049594226,
      0.004026434225985261, 0.032699568523002313},
     {0.370234241000453, 0.378706829334049, 0.469961374716105, 0.697132947614064, 0.612018002349761,
      0.523193096368038},
     {"Model", "Blocks", "Linear", "Interaction", "Square", "Residual", "Lack of fit", "Pure error",
      "Total"},
     {{7, 13.96039655763, 6.1581, none},
      {2, 1.245099591083, 1.92230, 0.2901748542097682},
      {2, 10.476076638578, 16.17394, 0.0247250367028249},
      {1, 2.064319006697, 6.37417, 0.0858210692954749},
      {2, 0.174901321274, 0.27003, 0.7801289092390722},
      {3, 0.971570201371, none, none},
      {2, 0.9484123066344, 20.47708, none},
      {1, 0.0231578947368, none, none},
      {10, 14.931966759003, none, none}},
     {{2, 2.064555256095, 3.18745, none},
      {1, 10.440345350499, 32.23754, 0.010825234445066511},
      {1, 0.207492767059, 0.64069, 0.481982754531114777},
      {1, 0.008756195267, 0.02704, 0.879846998712868755},
      {1, 2.058185651909, 6.35524, 0.086104228508465400},
      {1, 0.170243403453, 0.52568, 0.520865626592555753}},
     {0.934933541103321, 0.783111803677737, 0.569084118378303, 25.449860831979365,
      -0.704387723515066, 203.970173036618689},
     {{0.76595371603842044, 0.625079624811488, 1.6725383413580142, 5.2547825725368611,
       0.582986472429286362},
      {0.00969105649708747, 0.883177991502641, 0.0656617562770870, 0.0536511658911312,
       0.004074352235667383},
      {-0.13949689999589074, 0.803131174281750, -0.8407156909541550, -0.7851334063953019,
       0.360427444086473980}},
     {{2.557022966134365, 0.388784313273567}, {6.81704425714178, 1.54620578099927}},
     6.65328243305410,
     0.33754586822423}};

class ResponseSurfaceDesign : public ::testing::TestWithParam<Figures>
{
protected:
    Model model = modelOf(vapourDeposition(), GetParam().design);
    ResponseSurfaceStatistics statistics = model.responseSurfaceStatistics(0);
};

std::string nameOf(const ::testing::TestParamInfo<Figures>& info)
{
    return info.param.name;
}

} // namespace

TEST_P(ResponseSurfaceDesign, HasTheCoefficientsAndErrorsOfR)
{
    for (std::size_t k = 0; k < 6; ++k) {
        const CoefficientStatistics& one = statistics.coefficients[k];
        expectFigure(one.estimate, GetParam().coefficients[k], one.term);
        expectFigure(one.standardError, GetParam().errors[k], one.term);
        expectFigure(statistics.codedCoefficients[k].standardError, GetParam().codedErrors[k],
                     one.term);
    }
}

TEST_P(ResponseSurfaceDesign, HasTheAnalysisOfVarianceOfR)
{
    ASSERT_EQ(sourcesOf(statistics), GetParam().sources);
    for (std::size_t k = 0; k < statistics.anova.size(); ++k) {
        expectRow(statistics.anova[k], GetParam().anova[k]);
    }
    ASSERT_EQ(statistics.partialTests.size(), GetParam().partial.size());
    for (std::size_t k = 0; k < statistics.partialTests.size(); ++k) {
        expectRow(statistics.partialTests[k].row, GetParam().partial[k]);
    }
}

TEST_P(ResponseSurfaceDesign, HasTheQualityAndCaseDiagnosticsOfR)
{
    const std::vector<double>& quality = GetParam().quality;
    expectFigure(statistics.r2, quality[0], "R2");
    expectFigure(statistics.adjustedR2, quality[1], "adjusted R2");
    expectFigure(statistics.rmse, quality[2], "RMSE");
    expectFigure(statistics.press, quality[3], "PRESS");
    expectFigure(statistics.predictedR2, quality[4], "predicted R2");
    expectFigure(statistics.aicc, quality[5], "AICc");
    const std::size_t rows[] = {0, 3, 10};
    for (std::size_t k = 0; k < 3; ++k) {
        const CaseDiagnostics& one = statistics.cases[rows[k]];
        const std::vector<double>& expected = GetParam().cases[k];
        const double found[] = {one.residual, one.leverage, one.internallyStudentised,
                                one.externallyStudentised, one.cooksDistance};
        for (std::size_t i = 0; i < 5; ++i) {
            EXPECT_NEAR(found[i], expected[i], 1e-9 * std::max(1.0, std::fabs(expected[i])))
                << rows[k] << ", " << i;
        }
    }
}

TEST_P(ResponseSurfaceDesign, PredictsAsR)
{
    std::vector<Column> point = {{30.0}, {5.0}};
    double value = 0.0;
    std::vector<double*> result = {&value};
    model.interpolateDependentValues(pointersTo(point), {0}, result, 1);
    expectFigure(value, GetParam().prediction, "prediction");
    expectFigure(standardError(model, point, FittedModel::ErrorKind::Mean), GetParam().errorOfMean,
                 "standard error");

    const std::vector<LeaveOneOutPrediction> leftOut = model.leaveOneOutPredictions(0);
    const std::size_t rows[] = {0, 3};
    for (std::size_t k = 0; k < 2; ++k) {
        EXPECT_NEAR(leftOut[rows[k]].predicted, GetParam().leftOut[k][0], 1e-9);
        EXPECT_NEAR(leftOut[rows[k]].standardError, GetParam().leftOut[k][1], 1e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(Figures, ResponseSurfaceDesign, ::testing::ValuesIn(expectedFigures),
                         nameOf);

TEST(ResponseSurfaceDesign, ListsTheEffectsOfTheBlocks)
{
    const std::vector<BlockEffect> effects =
        modelOf(vapourDeposition(), blocks).responseSurfaceStatistics(0).blockEffects;

    ASSERT_EQ(effects.size(), 3u);
    const std::size_t numbers[] = {4, 7, 9};
    const double expected[] = {0.101546862633199, 0.378186412170711, -0.479733274803910};
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(effects[k].block, numbers[k]);
        expectFigure(effects[k].effect, expected[k], std::to_string(numbers[k]));
    }
}

TEST(ResponseSurfaceDesign, DropsAnInputThatIsTheSameWithinEachBlock)
{
    const Cases cases{{{1, 1, 1, 2, 2, 2}, {1, 2, 3, 1, 2, 3}}, {{1.0, 2.1, 2.9, 4.0, 5.2, 5.9}}};
    const Model model = modelOf(cases, {{}, {0, 0, 0, 1, 1, 1}}, {PolynomialTerms::Linear});

    EXPECT_EQ(model.fitWarnings(0).front(),
              "V1 cannot be separated from the blocks by these cases and was left out.");
}

TEST(ResponseSurfaceDesign, CountsTheBlocksWhereTheOrderIsLowered)
{
    const Cases cases{{{0, 1, 4, 2, 6, 3, 9}, {3, 1, 0, 5, 2, 8, 7}}, {{1, 2, 4, 3, 7, 5, 6}}};
    const Model model = modelOf(cases, {{}, {0, 1, 2, 0, 1, 2, 0}});

    EXPECT_EQ(model.fitWarnings(0).front(),
              "The order was lowered from full quadratic to linear: 8 terms (2 of the blocks) need "
              "at least as many cases.");
}

TEST(ResponseSurfaceDesign, SaysWhatWeightsAndBlocksMeanForPredictions)
{
    const std::vector<std::string> notes = modelOf(vapourDeposition(), both).fitNotes(0);

    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0], "The cases are weighted: the residual standard deviation and prediction "
                        "limits are those of a case of mean weight.");
    EXPECT_EQ(notes[1], "Equation and predictions are those of the average of the 3 blocks.");
}

TEST(ResponseSurfaceDesign, DependsOnlyOnTheRatiosOfWeights)
{
    CaseDesign scaled = weights;
    for (double& weight : scaled.weights) {
        weight *= 1024.0;
    }
    EXPECT_EQ(modelOf(vapourDeposition(), scaled).qualityMetricInformation(0),
              modelOf(vapourDeposition(), weights).qualityMetricInformation(0));
}

TEST(ResponseSurfaceDesign, SelectsTermsButKeepsTheBlocks)
{
    ResponseSurfaceOptions options;
    options.selection = ResponseSurfaceOptions::Selection::BackwardAicc;
    const ResponseSurfaceStatistics statistics =
        modelOf(vapourDeposition(), blocks, options).responseSurfaceStatistics(0);

    EXPECT_EQ(statistics.anova[1].source, "Blocks");
    EXPECT_EQ(statistics.blockEffects.size(), 3u);
    EXPECT_FALSE(statistics.droppedTerms.empty());
}

TEST(ResponseSurfaceDesign, GivesTheR2OfATransformWithTheEffectsOfTheBlocks)
{
    Cases cases = vapourDeposition();
    for (std::size_t row = 0; row < cases.count(); ++row) {
        cases.outputs[0][row] *= 10.0 * static_cast<double>(blocks.blocks[row]);
    }
    const auto maker = [](const std::vector<double*>& inputs, const std::vector<double*>& outputs,
                          std::size_t rows, const CaseDesign& design) {
        return std::make_unique<SurrogateResponseSurfaceModel>(inputs, outputs, rows,
                                                               ResponseSurfaceOptions(), design);
    };
    const TransformedOutput model(cases.inputPointers(), cases.outputPointers(), cases.count(),
                                  maker, TransformSetting::Logarithm, blocks);

    EXPECT_GT(model.fitMetrics(0).r2, 0.95);
}
