#include <mirel_fitting/SurrogateModelInterface.h>

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>
#include <thread>
#include <type_traits>

namespace {

using namespace fittingtest;

using Error = SurrogateModelInterface::Error;

/** A language that writes 1.234,5. */
class OtherNumbers : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

using Models = std::vector<std::unique_ptr<SurrogateModelInterface>>;

Models bothModels(Cases cases)
{
    Models models;
    models.push_back(std::make_unique<SurrogateResponseSurfaceModel>(
        cases.inputPointers(), cases.outputPointers(), cases.count()));
    models.push_back(
        std::make_unique<KrigingSurrogateModel>(cases.inputPointers(), cases.outputPointers(),
                                                static_cast<int>(cases.count()), KrigingOptions()));
    return models;
}

std::string textsOf(const Models& models)
{
    std::string texts;
    for (const std::unique_ptr<SurrogateModelInterface>& model : models) {
        texts += model->surfaceCoefficientInformation(0) + model->qualityMetricInformation(0);
    }
    return texts;
}

} // namespace

TEST(SurrogateModelInterface, CarriesItsMessage)
{
    EXPECT_STREQ(Error("There are 100% too few cases.").what(), "There are 100% too few cases.");
}

TEST(SurrogateModelInterface, IsCaughtAsExceptionOfTheApplicationAndOfTheLanguage)
{
    EXPECT_THROW(throw Error("refused"), veska::ExceptionBase);
    try {
        throw Error("refused");
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "refused");
    }
}

TEST(SurrogateModelInterface, CopiesKeepTheMessage)
{
    auto original = std::make_unique<Error>("refused");
    const Error copy = *original;
    Error assigned("another");
    assigned = *original;
    original.reset();

    EXPECT_STREQ(copy.what(), "refused");
    EXPECT_STREQ(assigned.what(), "refused");
}

TEST(SurrogateModelInterface, IsAVirtualBaseOfBothModels)
{
    // Two ways to the interface are one only if both are virtual.
    class Both : public KrigingSurrogateModel, public virtual SurrogateModelInterface
    {};
    class AlsoBoth : public SurrogateResponseSurfaceModel, public virtual SurrogateModelInterface
    {};

    EXPECT_TRUE((std::is_convertible_v<Both*, SurrogateModelInterface*>));
    EXPECT_TRUE((std::is_convertible_v<AlsoBoth*, SurrogateModelInterface*>));
    EXPECT_TRUE(std::has_virtual_destructor_v<SurrogateModelInterface>);
}

TEST(SurrogateModelInterface, TextsOfBothModelsAreTheSameInEveryLocale)
{
    Cases cases = twoInputs(1200, 0.0);
    // Many cases and large numbers, but few points for Kriging.
    for (std::size_t i = 0; i < cases.count(); ++i) {
        cases.inputs[0][i] = static_cast<double>(i % 6) * 1000.5;
        cases.inputs[1][i] = static_cast<double>(i % 5) * 0.5;
        cases.outputs[0][i] = 1e6 * surface(i % 6, i % 5) + static_cast<double>(i % 7);
    }
    const std::string expected = textsOf(bothModels(cases));
    const std::locale before =
        std::locale::global(std::locale(std::locale::classic(), new OtherNumbers));

    const std::string found = textsOf(bothModels(cases));
    std::locale::global(before);

    EXPECT_EQ(found, expected);
}

TEST(SurrogateModelInterface, LetsThreadsUseModelsOfTheirOwn)
{
    const std::string expected = textsOf(bothModels(twoInputs(40, 1.0)));
    std::vector<std::string> found(4);
    std::vector<std::thread> threads;
    for (std::string& texts : found) {
        threads.emplace_back([&texts] { texts = textsOf(bothModels(twoInputs(40, 1.0))); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(found, std::vector<std::string>(4, expected));
}
