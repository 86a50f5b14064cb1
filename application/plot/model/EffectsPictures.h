#pragma once

#include <plot/data/EffectsPicture.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <vector>

class CaseSession;
class MainEffects;

/** The most effects in one picture: those of more inputs are too small to be read. */
constexpr std::size_t maxEffects = 30;

/** Sweeps of an output on one axis, the strongest first, `count` at most.
 *  @throw SurrogateModelInterface::Error where one cannot be drawn. */
SURROGATE_PLOT_EXPORT std::vector<SweepPicture> effectSweeps(CaseSession& session,
                                                             const MainEffects& effects,
                                                             std::size_t output, std::size_t count);

/** The same as one picture. @throw SurrogateModelInterface::Error */
SURROGATE_PLOT_EXPORT EffectsPicture effectsPicture(CaseSession& session,
                                                    const MainEffects& effects, std::size_t output);
