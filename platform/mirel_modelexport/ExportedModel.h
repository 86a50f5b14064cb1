#pragma once

#include <mirel_fitting/DescribedSurrogateModel.h>

#include <mirel_modelexport/Export.h>

#include <boost/shared_ptr.hpp>
#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

/** A fitted model with what its users call its variables: ready to leave the program. */
struct MIREL_MODELEXPORT_EXPORT ExportedModel
{
    /** A column of the model as users see it. */
    struct Input
    {
        std::string name;     ///< UTF-8, any: in texts and comments of the export
        double minimum = 0.0; ///< of the range that users see; finite
        double maximum = 0.0; ///< likewise
        std::optional<double> held =
            std::nullopt; ///< where it stays while nothing else is said; finite
    };

    /** A described output of the model. */
    struct Output
    {
        std::string name;                      ///< as of an input
        DescribedSurrogateModel::Output model; ///< predicts the output in its unit
    };

    /** Names an output of a model. */
    struct WantedOutput
    {
        std::string name; ///< what the export calls it
        int offset = 0;   ///< in the model
    };

    /**
     * Describes outputs of a model, which are fitted if that has not been done.
     * @param inputs  one per input of the model, in its order.
     * @param outputs at least one, in the order wanted.
     * @throw SurrogateModelInterface::Error if the model cannot be described, or has another number
     *        of inputs.
     */
    static ExportedModel of(const SurrogateModelInterface& model, const std::vector<Input>& inputs,
                            const std::vector<WantedOutput>& outputs);

    /** A model that predicts the outputs, at the offsets 0, 1, ... in their order, to the last bit.
     *  @throw SurrogateModelInterface::Error */
    boost::shared_ptr<DescribedSurrogateModel> predictor() const;

    /** Whether the outputs, which are all of one kind, are Kriging models; false for none. */
    bool isKriging() const;

    std::vector<Input> inputs;   ///< in the order of the model's columns
    std::vector<Output> outputs; ///< in the order of predictor()'s offsets
    /** An object that goes with the model unread: what the exporter knows beyond it. Null: nothing.
     */
    nlohmann::ordered_json report;
};
