// A fitted model without a project: columns in, predictions with intervals and a C file out.
#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_modelexport/ModelExport.h>

#include <cmath>
#include <fstream>
#include <iostream>

int main()
{
    constexpr std::size_t cases = 40;
    std::vector<std::vector<double>> inputs(2);
    std::vector<double> output;
    for (std::size_t i = 0; i < cases; ++i) {
        const double x = static_cast<double>(i) / cases;
        const double z = std::fmod(0.618034 * static_cast<double>(i), 1.0);
        inputs[0].push_back(x);
        inputs[1].push_back(z);
        output.push_back(std::sin(6.0 * x) + x * z);
    }
    const KrigingSurrogateModel model(pointersTo(inputs), {output.data()}, cases, KrigingOptions());
    std::cout << "Q2 " << model.fitMetrics(0).q2 << '\n';

    double x = 0.31;
    double z = 0.77;
    double predicted = 0.0;
    std::vector<double*> wanted = {&predicted};
    model.interpolateDependentValues({&x, &z}, {0}, wanted, 1);
    const PredictionIntervals limits = model.predictionIntervals({&x, &z}, 0, 0.95, 1);
    std::cout << predicted << " between " << limits.lower[0] << " and " << limits.upper[0] << '\n';

    const ExportedModel exported =
        ExportedModel::of(model, {{"x", 0.0, 1.0}, {"z", 0.0, 1.0}}, {{"y", 0}});
    std::ofstream("model.c") << exportModel(exported, ExportFormat::C);
    return std::abs(predicted - (std::sin(6.0 * x) + x * z)) < 0.01 ? 0 : 1;
}
