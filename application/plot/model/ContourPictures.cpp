#include "plot/model/ContourPictures.h"

#include "plot/drawing/AxisScale.h"
#include "plot/model/DrawableValues.h"
#include "plot/model/ModelSlice.h"

#include <session/text/QuotedText.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

namespace {
std::vector<double> ascendingValues(const ModelSlice::Column& input)
{
    std::vector<double> values = input.values;
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    requireTwoValues(values.size(), input.name);
    return values;
}

std::size_t positionOf(double value, const std::vector<double>& ascending)
{
    return static_cast<std::size_t>(std::lower_bound(ascending.begin(), ascending.end(), value) -
                                    ascending.begin());
}

void addExtremes(ContourPicture& picture)
{
    const auto [least, most] = std::minmax_element(picture.values.begin(), picture.values.end());
    if (!(*most - *least > AxisScale::minRelativeSpread * std::abs(*most))) {
        return;
    }
    for (const auto found : {least, most}) {
        const auto position = static_cast<std::size_t>(found - picture.values.begin());
        picture.extremes.push_back({picture.x[position / picture.y.size()],
                                    picture.y[position % picture.y.size()], *found});
    }
}

/** Each point once, in the order of the cases. */
void addCases(const std::vector<double>& x, const std::vector<double>& y, ContourPicture& picture)
{
    std::map<std::pair<double, double>, std::size_t> positions;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto [found, isNew] =
            positions.emplace(std::make_pair(x[i], y[i]), picture.caseX.size());
        if (isNew) {
            picture.caseX.push_back(x[i]);
            picture.caseY.push_back(y[i]);
            picture.caseCounts.push_back(0);
        }
        ++picture.caseCounts[found->second];
    }
}
} // namespace

ContourPicture contourPicture(const ModelSlice& slice, std::size_t output)
{
    const ModelSlice::Column& x = slice.inputs[slice.swept[0]];
    const ModelSlice::Column& y = slice.inputs[slice.swept[1]];
    const ModelSlice::Column& model = slice.outputs[output];
    ContourPicture picture;
    picture.xName = x.label();
    picture.yName = y.label();
    picture.outputName = model.label();
    picture.title = model.name + " over " + x.name + " and " + y.name + ", " + slice.modelName;
    picture.x = ascendingValues(x);
    picture.y = ascendingValues(y);
    // The typed values may come in any order, and more than once.
    picture.values.resize(picture.x.size() * picture.y.size());
    picture.isOutside.resize(slice.isOutside.empty() ? 0 : picture.values.size());
    for (std::size_t point = 0; point < slice.points(); ++point) {
        const std::size_t position = positionOf(x.values[point], picture.x) * picture.y.size() +
                                     positionOf(y.values[point], picture.y);
        picture.values[position] = model.values[point];
        if (!slice.isOutside.empty()) {
            picture.isOutside[position] = slice.isOutside[point];
        }
    }
    picture.isLogarithmic = model.isLogarithmic;
    addExtremes(picture);
    addCases(x.caseValues, y.caseValues, picture);
    picture.caseLabel = slice.caseLabel();
    picture.caption = slice.caption();
    picture.extrapolation = slice.extrapolation;
    requireDrawable(picture.x, quotedText(x.name));
    requireDrawable(picture.y, quotedText(y.name));
    requireDrawable(picture.values, "The model of " + quotedText(model.name));
    return picture;
}
