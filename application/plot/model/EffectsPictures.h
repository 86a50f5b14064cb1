#pragma once

#include <plot/data/EffectsPicture.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <vector>

class CaseSession;
class MainEffects;

/** The most effects in one picture: more make it too long to find anything in. */
constexpr std::size_t maxEffects = 100;

/** Gives sweeps of one output the same axis. */
SURROGATE_PLOT_EXPORT void shareAxis(std::vector<SweepPicture>& sweeps);

/** The sweeps of an output as one picture.
 *  @throw SurrogateModelInterface::Error where one cannot be drawn. */
SURROGATE_PLOT_EXPORT EffectsPicture effectsPicture(CaseSession& session,
                                                    const MainEffects& effects, std::size_t output);
