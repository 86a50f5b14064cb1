#pragma once

#include <plot/data/SweepPicture.h>

#include <string>
#include <vector>

/**
 * One output along each of several inputs, all others held: small pictures side by side, whose axes
 * of the output are the same.
 */
struct EffectsPicture
{
    std::string title;
    /** One at least, the strongest first; without titles, labels of a legend and captions. */
    std::vector<SweepPicture> effects;
    std::string caption; ///< what lines, bands and dots are, and what is held
};
