// Also run under ThreadSanitizer: the preset tsan.
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

namespace {

/** A wavy output over a lattice of two inputs, which no two models share. */
struct Cases
{
    explicit Cases(double phase)
    {
        for (int i = 0; i < 9; ++i) {
            for (int j = 0; j < 9; ++j) {
                x.push_back(i + 0.1 * j);
                y.push_back(j);
                z.push_back(std::sin(0.7 * i + phase) + 0.1 * j * j);
            }
        }
    }

    std::unique_ptr<SurrogateModelInterface> kriging()
    {
        return std::make_unique<KrigingSurrogateModel>(
            std::vector<double*>{x.data(), y.data()}, std::vector<double*>{z.data()},
            static_cast<int>(x.size()), KrigingOptions());
    }

    std::unique_ptr<SurrogateModelInterface> responseSurface()
    {
        return std::make_unique<SurrogateResponseSurfaceModel>(
            std::vector<double*>{x.data(), y.data()}, std::vector<double*>{z.data()}, x.size());
    }

    /** At points beside the cases. */
    std::vector<double> predictions(SurrogateModelInterface& model) const
    {
        std::vector<double> points[2] = {x, y};
        for (double& coordinate : points[0]) {
            coordinate += 0.3;
        }
        std::vector<double> values(x.size());
        std::vector<double*> outputs = {values.data()};
        model.activateDependentVariables({0});
        model.interpolateDependentValues({points[0].data(), points[1].data()}, {0}, outputs,
                                         values.size());
        return values;
    }

    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> z;
};

} // namespace

TEST(Threads, FitAndEvaluateTheirModelsAsOneThreadDoes)
{
    Cases cases[] = {Cases(0.0), Cases(1.0)};
    std::vector<double> expected[2];
    std::vector<double> found[2];
    for (int k = 0; k < 2; ++k) {
        expected[k] = cases[k].predictions(*cases[k].kriging());
    }

    std::thread threads[2];
    for (int k = 0; k < 2; ++k) {
        threads[k] = std::thread([&cases, &found, k] {
            cases[k].predictions(*cases[k].responseSurface());
            found[k] = cases[k].predictions(*cases[k].kriging());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    for (int k = 0; k < 2; ++k) {
        EXPECT_EQ(found[k], expected[k]);
    }
}

TEST(Threads, OneCancelsTheFitOfAnother)
{
    Cases cases(0.0);
    std::atomic<bool> isRunning{false};
    std::atomic<bool> isCancelled{false};
    bool isRefused = false;
    std::thread fitting([&] {
        const FitProgress progress([&](double, const std::string&) {
            isRunning = true;
            while (!isCancelled) {
                std::this_thread::yield();
            }
            return false;
        });
        try {
            cases.predictions(*cases.kriging());
        } catch (const SurrogateModelInterface::Error&) {
            isRefused = true;
        }
    });
    while (!isRunning) {
        std::this_thread::yield();
    }
    isCancelled = true;
    fitting.join();

    EXPECT_TRUE(isRefused);
}
