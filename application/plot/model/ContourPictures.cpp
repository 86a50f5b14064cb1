#include "plot/model/ContourPictures.h"

#include "plot/model/DrawableValues.h"
#include "plot/model/ModelCut.h"

#include <session/text/QuotedText.h>

#include <algorithm>

namespace {
std::vector<double> ascendingValues(const ModelCut::Column& input)
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
} // namespace

ContourPicture contourPicture(const ModelCut& cut, std::size_t output)
{
    const ModelCut::Column& x = cut.inputs[cut.swept[0]];
    const ModelCut::Column& y = cut.inputs[cut.swept[1]];
    const ModelCut::Column& model = cut.outputs[output];
    ContourPicture picture;
    picture.xName = x.label();
    picture.yName = y.label();
    picture.outputName = model.label();
    picture.title = model.name + " over " + x.name + " and " + y.name + ", " + cut.modelName;
    picture.x = ascendingValues(x);
    picture.y = ascendingValues(y);
    // The typed values may come in any order, and more than once.
    picture.values.resize(picture.x.size() * picture.y.size());
    for (std::size_t point = 0; point < cut.points(); ++point) {
        picture.values[positionOf(x.values[point], picture.x) * picture.y.size() +
                       positionOf(y.values[point], picture.y)] = model.values[point];
    }
    picture.caseX = x.caseValues;
    picture.caseY = y.caseValues;
    picture.caseLabel = cut.caseLabel();
    picture.caption = cut.caption();
    picture.extrapolation = cut.extrapolation;
    requireDrawable(picture.x, quotedText(x.name));
    requireDrawable(picture.y, quotedText(y.name));
    requireDrawable(picture.values, "The model of " + quotedText(model.name));
    return picture;
}
