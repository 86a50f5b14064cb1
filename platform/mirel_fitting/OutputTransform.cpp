#include <mirel_fitting/OutputTransform.h>

#include <cmath>

double OutputTransforms::apply(OutputTransform transform, double y)
{
    switch (transform) {
    case OutputTransform::SquareRoot:
        return std::sqrt(y);
    case OutputTransform::Logarithm:
        return std::log(y);
    default:
        return y;
    }
}

double OutputTransforms::invert(OutputTransform transform, double value)
{
    switch (transform) {
    case OutputTransform::SquareRoot:
        return value < 0.0 ? 0.0 : value * value;
    case OutputTransform::Logarithm:
        return std::exp(value);
    default:
        return value;
    }
}

void OutputTransforms::invert(OutputTransform transform, double* values, std::size_t count)
{
    if (transform == OutputTransform::None) {
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = invert(transform, values[i]);
    }
}

const char* OutputTransforms::word(OutputTransform transform)
{
    switch (transform) {
    case OutputTransform::SquareRoot:
        return "sqrt";
    case OutputTransform::Logarithm:
        return "log";
    default:
        return "none";
    }
}

std::optional<OutputTransform> OutputTransforms::ofWord(const std::string& text)
{
    for (const OutputTransform transform :
         {OutputTransform::None, OutputTransform::SquareRoot, OutputTransform::Logarithm}) {
        if (text == word(transform)) {
            return transform;
        }
    }
    return std::nullopt;
}
