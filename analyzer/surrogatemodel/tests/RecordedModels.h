#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/** What the constructor of a model was given. */
struct RecordedFit
{
    bool isKriging;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
    std::size_t rowCount;
    double tolerance = 0.0;
    std::vector<double> correlationLengths = {};
    int trendOrder = 0;
    double initialCorrelationLength = 0.0;
    double nugget = 0.0;
    int nuggetMode = 0;
};

/**
 * The two models of this test program: bodies for the real headers that fit nothing but record what
 * the manager asks of them. The program's definitions precede those of the fitting library.
 */
struct RecordedModels
{
    std::vector<RecordedFit> fits;
    int alive = 0;
    int mostAlive = 0;
    /** Runs in every constructor after it was recorded; may throw. */
    std::function<void()> onConstruct;
};

RecordedModels& recordedModels();
