#pragma once

#include <plot/data/ActualPicture.h>
#include <plot/data/CoefficientPicture.h>
#include <plot/data/ContourPicture.h>
#include <plot/data/EffectsPicture.h>
#include <plot/data/NormalPicture.h>
#include <plot/data/ResidualPicture.h>
#include <plot/data/SweepPicture.h>

#include <variant>

/** What can be drawn: each kind is numbers and names, and knows nothing of drawing. */
using PictureData = std::variant<SweepPicture, ContourPicture, ActualPicture, ResidualPicture,
                                 NormalPicture, CoefficientPicture, EffectsPicture>;
