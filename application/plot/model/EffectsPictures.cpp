#include "plot/model/EffectsPictures.h"

#include "plot/drawing/AxisScale.h"
#include "plot/model/ConfidenceBand.h"
#include "plot/model/MainEffects.h"
#include "plot/model/ModelSlice.h"
#include "plot/model/SweepPictures.h"

#include <session/model/CaseSession.h>
#include <session/text/SettingHint.h>

#include <algorithm>

void shareAxis(std::vector<SweepPicture>& sweeps)
{
    QwtInterval all;
    for (const SweepPicture& sweep : sweeps) {
        for (const auto* const column :
             {&sweep.model, &sweep.lower, &sweep.upper, &sweep.caseOutputs}) {
            all = all | AxisScale::range(*column);
        }
    }
    for (SweepPicture& sweep : sweeps) {
        sweep.axisOutputs = {all.minValue(), all.maxValue()};
    }
}

EffectsPicture effectsPicture(CaseSession& session, const MainEffects& effects, std::size_t output)
{
    const ModelSlice& first = *effects.strongest(output, 1).front();
    const std::string& name = first.outputs[output].name;
    EffectsPicture picture;
    picture.title = first.outputs[output].label() + ", main effects, " + first.modelName;
    for (const ModelSlice* const slice : effects.strongest(output, maxEffects)) {
        picture.effects.push_back(
            sweepPicture(*slice, output, ConfidenceBand::of(session, *slice, output)));
    }
    shareAxis(picture.effects);
    const std::string band = picture.effects.front().bandLabel;
    bool hasCases = false;
    for (SweepPicture& effect : picture.effects) {
        effect.title.clear();
        effect.caption.clear();
        effect.outputName.clear();
        effect.modelLabel.clear();
        effect.bandLabel.clear();
        effect.caseLabel.clear();
        hasCases = hasCases || !effect.caseInputs.empty();
    }
    if (picture.effects.size() < effects.size()) {
        picture.caption = "The " + std::to_string(picture.effects.size()) + " of " +
                          std::to_string(effects.size()) + " inputs along which " + name +
                          " changes most; name another to see its effect" +
                          settingHint(Setting::SweptInput) + ". ";
    }
    picture.caption += "Line: " + first.modelName;
    picture.caption += band.empty() ? "." : "; band: " + band + '.';
    picture.caption += hasCases ? " Dots: cases whose other inputs lie within 10\302\240% of their "
                                  "range of where they are held."
                                : " No case has all held inputs within 10\302\240% of their range.";
    if (first.inputs.size() > 1) {
        picture.caption += " Held while others are swept: " + effects.heldText() + '.';
    }
    return picture;
}
