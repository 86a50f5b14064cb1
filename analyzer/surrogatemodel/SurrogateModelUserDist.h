#pragma once

#include <surrogatemodel/Export.h>
#include <surrogatemodel/InterpolationPointsInterface.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/**
 * A distribution text as a user types it for one variable, such as "0 - 10 : 11, 12.5": its check
 * against the grammar, the first fault as code and message, and its expansion into values.
 *
 * The text is a list of items separated by commas; blanks around an item do not matter. An item is
 * a single number, or a range "minimum - maximum : count" of evenly spaced values, both ends
 * included. Numbers are written in the C locale whatever the locale of the program; the text is
 * UTF-8. The text is parsed when an answer is first needed and, in get(), each time.
 *
 * A fault of the text never throws. Only lack of memory (std::bad_alloc, std::length_error) does: a
 * range is limited to 1000000 values, the number of ranges is not. One thread.
 */
class SURROGATEMODEL_EXPORT SurrogateModelUserDist : public virtual InterpolationPointsInterface
{
public:
    /** What is wrong with a text; the comment is the message. */
    enum ParseErrorCode : std::int32_t
    {
        NoError = 0,                    ///< No error
        InvalidFloatingPointNumber = 1, ///< Invalid floating point number
        MinimumOutOfBounds = 2,         ///< Minimum range is too large or too small
        MaximumOutOfBounds = 3,         ///< Maximum range is too large or too small
        ValueOutOfRange = 4,            ///< Value is out of range
        TooManyValues = 5,              ///< Number of values too large
        NoValues = 6,                   ///< You must specify at least one value
        MinimumLargerThanMaximum = 7,   ///< Range minimum is larger than range maximum
        /// If minimum value range equals maximum value range, number of points must be 1
        EqualBoundsNeedOnePoint = 8,
        TooFewValues = 9,  ///< The number of values must be greater than 1
        NoValueRange = 10, ///< No value range specified
        NotYetParsed = 12  ///< before the first parse; no message
    };

    /** Keeps a copy of `text`; nothing is parsed yet. */
    explicit SurrogateModelUserDist(const std::string& text);

    SurrogateModelUserDist(const SurrogateModelUserDist&) = delete;
    SurrogateModelUserDist& operator=(const SurrogateModelUserDist&) = delete;

    /** The first fault of the text, NoError if there is none; never NotYetParsed. */
    ParseErrorCode validate();

    /** Whether the text has no fault. */
    bool isValid() const;

    /** How many values the items give together, those that overlap counted twice: get() holds so
     *  many at a time. 0 for a text with a fault. */
    std::uint64_t valueCount() const;

    /**
     * "Expression: " and the faulty item without the blanks around it, then on a second line the
     * message of its fault. Empty while no parse has failed, thus also before the first.
     */
    std::string errorString() const;

    /** The fault of the text on one line, and what to write; empty without a fault. */
    std::string refusal() const;

    /**
     * Replaces what `values` held by the values of the text, strictly ascending: overlapping items
     * give each value once. A text with a fault leaves `values` as it was.
     */
    void get(std::vector<double>& values) const override;

    ~SurrogateModelUserDist() override;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};
