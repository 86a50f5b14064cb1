#pragma once

#include <mirel_modelexport/ExportedModel.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/**
 * The formulas that compute the outputs at one point, whose inputs stand side by side in a row of a
 * sheet: steps, such as scaled inputs, and the outputs from them. They refer to cells of their row,
 * so that the row can be copied.
 */
class PointFormulas
{
public:
    /** Where the first input and the first step stand. */
    struct Columns
    {
        std::size_t inputs = 0;
        std::size_t steps = 0;
    };

    /** @param model is borrowed. */
    PointFormulas(const ExportedModel& model, const Columns& columns);

    /** Side by side from columns.steps on. */
    std::size_t stepCount() const { return steps.size(); }
    const std::string& stepHeading(std::size_t step) const { return steps[step].heading; }

    /** Without the equals sign. @param row from 0. */
    std::string stepFormula(std::size_t step, std::size_t row) const;
    std::string outputFormula(std::size_t output, std::size_t row) const;

    /** The values of the steps at a point, for a reader that does not compute. */
    std::vector<double> stepValues(const std::vector<double>& point) const;

    /** The names under which the formulas know the cases of an output: its weights, and one scaled
     *  coordinate of each. */
    static std::string weightsName(std::size_t output);
    static std::string casesName(std::size_t output, std::size_t coordinate);

private:
    using Values = std::vector<double>;

    struct Step
    {
        std::string heading;
        std::string formula; // with a mark in the place of the number of the row
        std::function<double(const Values& point, const Values& stepsBefore)> value;
    };

    std::size_t addStep(const Step& step);
    std::string inputCell(std::size_t input) const;
    std::string stepCell(std::size_t step) const;
    std::size_t addCoordinate(const PredictorDescription::Coordinate& coordinate, bool isClamped);
    std::string polynomial(const PredictorDescription& predictor);
    std::string kriging(const PredictorDescription& predictor, std::size_t output);
    std::string trend(const PredictorDescription& predictor, const std::vector<std::size_t>& u);
    std::string correlated(const PredictorDescription& predictor, const std::vector<std::size_t>& u,
                           std::size_t output);

    Columns columns;
    std::vector<Step> steps;
    std::vector<std::string> outputs;
};
