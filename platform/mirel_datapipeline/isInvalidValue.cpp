#include <mirel_datapipeline/isInvalidValue.h>

bool isInvalidValue(const vtkVariant& value)
{
    // An array or another object in a cell would answer ToDouble() with its first value.
    if (!value.IsNumeric() && !value.IsString()) {
        return true;
    }
    bool isNumber = false;
    const double number = value.ToDouble(&isNumber);
    return !isNumber || isInvalidNumber(number);
}
