#include "plot/model/SweepPictures.h"

#include "plot/model/ConfidenceBand.h"
#include "plot/model/DrawableValues.h"
#include "plot/model/ModelSlice.h"

#include <session/text/QuotedText.h>

#include <algorithm>
#include <numeric>

namespace {
/** The points in ascending order of the input, each of its values once. */
std::vector<std::size_t> ascending(const std::vector<double>& values)
{
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return values[left] < values[right];
    });
    const auto isEqual = [&](std::size_t left, std::size_t right) {
        return values[left] == values[right];
    };
    order.erase(std::unique(order.begin(), order.end(), isEqual), order.end());
    return order;
}
} // namespace

SweepPicture sweepPicture(const ModelSlice& slice, std::size_t output, const ConfidenceBand& band)
{
    const ModelSlice::Column& input = slice.inputs[slice.swept.front()];
    const ModelSlice::Column& model = slice.outputs[output];
    const std::vector<std::size_t> order = ascending(input.values);
    requireTwoValues(order.size(), input.name);
    SweepPicture picture;
    picture.inputName = input.label();
    picture.outputName = model.label();
    picture.title = model.name + " over " + input.name + ", " + slice.modelName;
    picture.modelLabel = slice.modelName;
    picture.isLogarithmic = model.isLogarithmic;
    for (const std::size_t point : order) {
        picture.inputs.push_back(input.values[point]);
        picture.model.push_back(model.values[point]);
    }
    picture.bandLabel = band.label;
    for (std::size_t i = 0; i < order.size() && !band.lower.empty(); ++i) {
        picture.lower.push_back(band.lower[order[i]]);
        picture.upper.push_back(band.upper[order[i]]);
    }
    picture.caseInputs = input.caseValues;
    picture.caseOutputs = model.caseValues;
    picture.caseLabel = slice.caseLabel();
    picture.caption = slice.caption();
    picture.extrapolation = slice.extrapolation;
    requireDrawable(picture.inputs, quotedText(input.name));
    requireDrawable(picture.caseOutputs, quotedText(model.name));
    for (const auto* const column : {&picture.model, &picture.lower, &picture.upper}) {
        requireDrawable(*column, "The model of " + quotedText(model.name));
    }
    return picture;
}
