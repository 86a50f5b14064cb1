#include <mirel_fitting/TransformSetting.h>

TransformSetting transformFor(TransformSetting setting, bool isKriging)
{
    switch (setting) {
    case TransformSetting::Usual:
        return isKriging ? TransformSetting::Automatic : TransformSetting::None;
    case TransformSetting::BoxCox:
        return isKriging ? TransformSetting::Automatic : setting;
    default:
        return setting;
    }
}

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
