#pragma once

#include <mirel_datapipeline/Export.h>

#include <vtkVariant.h>

#include <cmath>

/**
 * Whether a cell of the cases table cannot be used as a number: an invalid variant, empty or blank
 * text, text that is no number as a whole ("12 mm"), NaN, infinity, or an object. Whatever is not
 * invalid gives a finite number with vtkVariant::ToDouble().
 */
MIREL_DATAPIPELINE_EXPORT bool isInvalidValue(const vtkVariant& value);

/** The same for a cell that is a number: NaN and infinity are invalid. */
inline bool isInvalidNumber(double number)
{
    return !std::isfinite(number);
}
