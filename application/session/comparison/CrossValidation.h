#pragma once

#include "session/cases/CaseFolds.h"
#include "session/comparison/OutputComparison.h"

#include <mirel_fitting/CaseDesign.h>
#include <mirel_fitting/FitProgress.h>
#include <surrogatemodel/SurrogateModelFactory.h>

#include <cstddef>
#include <string>
#include <vector>

class SurrogateModelInterface;
class Workspace;
struct ResponseSurfaceOptions;

/** The valid cases of a workspace, as columns. */
struct ComparedCases
{
    explicit ComparedCases(const Workspace& workspace);

    /** Mean 1. */
    double weight(std::size_t i) const { return design.weights.empty() ? 1.0 : design.weights[i]; }

    std::size_t count() const { return positions.size(); }

    CaseFolds folds() const;

    std::vector<std::size_t> positions; ///< in the case file
    CaseDesign design;
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> outputs;
};

/** The cross-validated predictions of one output by one type of model. */
struct Predictions
{
    explicit Predictions(std::size_t cases)
        : values(cases, CrossValidationMetrics::none), lower(values), upper(values)
    {}

    std::vector<double> values; ///< one per case, NaN where the fit of its fold has failed
    /** Limit of the 95 % interval of a case of its own weight, NaN where the fit has none. */
    std::vector<double> lower;
    std::vector<double> upper; ///< likewise
    std::vector<CrossValidationMetrics::Failure> failures;
    std::vector<std::size_t> terms;          ///< of each fit
    std::vector<OutputTransform> transforms; ///< likewise
    double seconds = 0.0;
};

/** The cases of one fold, which test the models, and the others, which train them. */
struct TrainTestSplit;

/** Cross-validates both models of all outputs. */
class CrossValidation
{
public:
    using ModelType = SurrogateModelFactory::ModelType;

    /** Of the progress of one fold: response surfaces take little of its time. */
    static constexpr double shareOfResponseSurface = 0.05;

    /** The progress of one of `count` equal steps. */
    static FitProgress::Portion partOf(std::size_t step, std::size_t count);

    /** Of a response surface before terms are selected: a selection of fewer terms is no sign of
     *  too few cases. */
    static std::size_t termCount(const SurrogateModelInterface& model,
                                 const ResponseSurfaceOptions& settings);

    /** Fits each model of each output `folds` times. It reports to the FitProgress of the thread.
     *  @param workspace borrowed for life, like the cases. */
    CrossValidation(const Workspace& workspace, const ComparedCases& cases, std::size_t folds);

    /** Of the cases that both models of an output have predicted. */
    PairedErrors pairedErrors(std::size_t output) const;

    /** One per output. */
    std::vector<Predictions> responseSurface;
    std::vector<Predictions> kriging;

private:
    void runFold(std::size_t fold);
    void runFit(ModelType type, std::size_t fold, TrainTestSplit& split,
                std::vector<double>& output, Predictions& predictions);
    void predict(ModelType type, TrainTestSplit& split, std::vector<double>& output,
                 Predictions& predictions, const std::string& message) const;
    void addBlockEffects(const SurrogateModelInterface& model, const std::vector<std::size_t>& rows,
                         const std::vector<std::vector<double>*>& columns) const;

    const Workspace& workspace;
    const ComparedCases& cases;
    std::size_t folds;
    std::vector<std::size_t> foldOfCase;
};
