#include <mirel_fitting/TransformSetting.h>

const char* transformWord(TransformSetting setting)
{
    switch (setting) {
    case TransformSetting::Automatic:
        return "auto";
    case TransformSetting::None:
        return "none";
    case TransformSetting::SquareRoot:
        return "sqrt";
    case TransformSetting::Logarithm:
        return "log";
    case TransformSetting::BoxCox:
        return "boxcox";
    default:
        return "usual";
    }
}
