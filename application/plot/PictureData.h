#pragma once

#include <plot/ActualPicture.h>
#include <plot/CoefficientPicture.h>
#include <plot/ContourPicture.h>
#include <plot/ResidualPicture.h>
#include <plot/SweepPicture.h>

#include <variant>

/** What can be drawn: each kind is numbers and names, and knows nothing of drawing. */
using PictureData =
    std::variant<SweepPicture, ContourPicture, ActualPicture, ResidualPicture, CoefficientPicture>;
