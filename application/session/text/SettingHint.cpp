#include "session/text/SettingHint.h"

#include <utility>

namespace {
std::map<Setting, std::string>& settingOptions()
{
    static std::map<Setting, std::string> options;
    return options;
}
} // namespace

void setSettingOptions(std::map<Setting, std::string> options)
{
    settingOptions() = std::move(options);
}

std::string settingHint(Setting setting, const std::string& value)
{
    const auto option = settingOptions().find(setting);
    return option == settingOptions().end()
               ? ""
               : " (" + option->second + (value.empty() ? "" : ' ' + value) + ')';
}
