#include <mirel_fitting/KrigingSurrogateModel.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::vector<double*> pointers(std::vector<std::vector<double>>& columns)
{
    std::vector<double*> result;
    for (std::vector<double>& column : columns) {
        result.push_back(column.data());
    }
    return result;
}

} // namespace

TEST(KrigingSurrogateModel, InterpolatesSmoothDataAtTheCases)
{
    std::vector<std::vector<double>> inputs = {{0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}};
    std::vector<std::vector<double>> outputs(1);
    for (const double x : inputs[0]) {
        outputs[0].push_back(std::sin(x));
    }
    const KrigingSurrogateModel model(pointers(inputs), pointers(outputs), 8, 1e-4, {}, 1, 0.5, 0.0,
                                      0);
    std::vector<double> values(8);
    std::vector<double*> results = {values.data()};

    model.interpolateDependentValues(pointers(inputs), {0}, results, 8);

    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_NEAR(values[i], outputs[0][i], 1e-6);
    }
}
