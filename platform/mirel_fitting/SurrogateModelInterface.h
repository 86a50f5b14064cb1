#pragma once

#include <mirel_fitting/Export.h>
#include <mirel_fitting/ThreadCount.h>

#include <mirel_property/ExceptionBase.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

/**
 * A fitted model of several dependent variables over the same independent variables.
 *
 * A dependent variable is addressed by its offset: its position among the dependent columns that
 * the model was made from, from 0. Models own what they need: the columns given to a constructor
 * are read during construction only. A dependent column may hold NaN or infinity; that is an Error
 * naming the offset when that dependent is activated, interpolated or described, and harmless to
 * the others.
 *
 * One thread at a time per model object, const members included: they may fit. Different models may
 * be used by different threads at the same time.
 */
class MIREL_FITTING_EXPORT SurrogateModelInterface
{
public:
    /** A model cannot be fitted or evaluated; the message is a sentence for the user. */
    class MIREL_FITTING_EXPORT Error : public veska::ExceptionBase
    {
    public:
        /** @param message the sentence, in UTF-8. */
        explicit Error(const std::string& message);
        ~Error() override;

        Error(const Error&) noexcept;            ///< shares the text
        Error& operator=(const Error&) noexcept; ///< shares the text
    };

    virtual ~SurrogateModelInterface();

    /**
     * Chooses the dependents that interpolations will want, and fits those that are not fitted
     * yet. An empty set does nothing.
     * @throw Error for an offset out of range, or a dependent that cannot be fitted.
     */
    virtual void activateDependentVariables(const std::set<int>& offsets) = 0;

    /**
     * Evaluates the model.
     * @param inputs  one array of `count` values per independent variable, in the order of the
     *                independent columns; borrowed for the call. May hold null when count is 0.
     * @param offsets the dependents wanted; need not have been activated.
     * @param outputs one array of `count` values per offset, in ascending order of the offsets;
     *                every value is written. A point with a coordinate that is not finite
     *                gets NaN.
     * @throw Error for another number of inputs or outputs, an offset out of range, or a dependent
     *        that cannot be fitted.
     */
    virtual void interpolateDependentValues(const std::vector<double*>& inputs,
                                            const std::set<int>& offsets,
                                            std::vector<double*>& outputs,
                                            std::size_t count) const = 0;

    /** Whether surfaceCoefficientInformation() describes an equation. */
    virtual bool surfaceCoefficientInformationAvailable() const = 0;

    /** Whether qualityMetricInformation() describes the quality of the fit. */
    virtual bool qualityMetricInformationAvailable() const = 0;

    /** The fitted equation of one dependent as text, in the symbols V1, V2, ... for the inputs. */
    virtual std::string surfaceCoefficientInformation(int offset) const = 0;

    /** Quality metrics and warnings of one dependent's fit, one to a line. */
    virtual std::string qualityMetricInformation(int offset) const = 0;
};
