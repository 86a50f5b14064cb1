#pragma once

#include <plot/data/CoefficientPicture.h>
#include <plot/data/ContourPicture.h>
#include <plot/data/EffectsPicture.h>
#include <plot/data/ScatterPicture.h>
#include <plot/data/SweepPicture.h>

#include <variant>

/** What one panel shows: each kind is numbers and names, and knows nothing of drawing. */
using PanelData = std::variant<SweepPicture, ContourPicture, ScatterPicture, CoefficientPicture>;

/** What can be drawn: a panel, or a group of panels. */
using PictureData =
    std::variant<SweepPicture, ContourPicture, ScatterPicture, CoefficientPicture, EffectsPicture>;
