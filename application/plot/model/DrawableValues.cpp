#include "plot/model/DrawableValues.h"

#include "plot/drawing/AxisScale.h"

#include <session/text/QuotedText.h>
#include <session/text/SessionErrors.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>

void requireDrawable(const std::vector<double>& values, const std::string& owner)
{
    // Each value by itself: minimum and maximum pass over NaN.
    const bool areDrawable = std::all_of(values.begin(), values.end(), [](double value) {
        return AxisScale::isDrawable({value, value});
    });
    if (!areDrawable) {
        throw SurrogateModelInterface::Error(
            owner + " holds values that are not finite, or too large to be drawn.");
    }
}

void requireTwoValues(std::size_t different, const std::string& input)
{
    if (different < 2) {
        throw UsageError("The picture needs at least two different values of " + quotedText(input) +
                         '.');
    }
}
