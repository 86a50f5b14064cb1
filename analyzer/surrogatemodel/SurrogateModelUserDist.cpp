#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_property/ExceptionBase.h>

#include <boost/format.hpp>

#include <QRegExp>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

using ParseErrorCode = SurrogateModelUserDist::ParseErrorCode;

/** The largest count that one range may ask for. */
const int MaxValuesPerItem = 1000000;

/** The first fault of an item; caught in the loop over the items. */
class ParseError : public veska::ExceptionBase
{
public:
    explicit ParseError(ParseErrorCode faultCode)
        : veska::ExceptionBase("Parse Error"), errorCode(faultCode)
    {}

    ParseErrorCode code() const { return errorCode; }

private:
    ParseErrorCode errorCode;
};

/** `count` values from minimum to maximum; a single value is a segment of one. */
struct DistributionSegment
{
    double minimum;
    double maximum;
    std::int32_t count;
};

/** A number; a few matches are not convertible, such as "..5". */
const std::string numberPattern = R"([-+]?[\.]?[0-9]*\.?[0-9]+(?:[eE][-+]?[0-9]+)?)";

/**
 * The grammar of an item. Blanks and the digits of the count may be of any script. A QRegExp stores
 * its last match, so that each parse has its own.
 */
class ItemPatterns
{
public:
    /** @throw ParseError with the first fault of `item`, which has no blanks around it. */
    DistributionSegment parse(const QString& item);

private:
    static QRegExp compiled(const boost::format& pattern)
    {
        return QRegExp(QString::fromStdString(pattern.str()), Qt::CaseSensitive, QRegExp::RegExp);
    }

    DistributionSegment matchedRange() const;

    QRegExp singleValue = compiled(boost::format("^(%1%)$") % numberPattern);
    QRegExp range = compiled(boost::format(R"(^(%1%)\s*-\s*(%2%)\s*\:\s*([+]?\d+)$)") %
                             numberPattern % numberPattern);
};

/** @throw ParseError with `fault` if the text is no number, or none that fits a double. */
double toDouble(const QString& text, ParseErrorCode fault)
{
    bool converted = false;
    const double value = text.toDouble(&converted);
    if (!converted) {
        throw ParseError(fault);
    }
    return value;
}

/** Only the digits 0 to 9 are converted, those of other scripts are not. */
std::int32_t toCount(const QString& text)
{
    bool converted = false;
    const std::int32_t count = text.toInt(&converted, 10);
    if (!converted || count > MaxValuesPerItem) {
        throw ParseError(SurrogateModelUserDist::TooManyValues);
    }
    if (count == 0) {
        throw ParseError(SurrogateModelUserDist::NoValues);
    }
    return count;
}

DistributionSegment ItemPatterns::matchedRange() const
{
    // The order of the checks decides which of several faults is reported.
    const double minimum = toDouble(range.cap(1), SurrogateModelUserDist::MinimumOutOfBounds);
    const double maximum = toDouble(range.cap(2), SurrogateModelUserDist::MaximumOutOfBounds);
    const std::int32_t count = toCount(range.cap(3));

    if (minimum > maximum) {
        throw ParseError(SurrogateModelUserDist::MinimumLargerThanMaximum);
    }
    if (minimum == maximum && count != 1) {
        throw ParseError(SurrogateModelUserDist::EqualBoundsNeedOnePoint);
    }
    if (minimum < maximum && count < 2) {
        throw ParseError(SurrogateModelUserDist::TooFewValues);
    }
    return {minimum, count == 1 ? minimum : maximum, count};
}

DistributionSegment ItemPatterns::parse(const QString& item)
{
    if (item.isEmpty()) {
        throw ParseError(SurrogateModelUserDist::NoValueRange);
    }
    if (singleValue.exactMatch(item)) {
        const double value = toDouble(item, SurrogateModelUserDist::ValueOutOfRange);
        return {value, value, 1};
    }
    if (range.exactMatch(item)) {
        return matchedRange();
    }
    throw ParseError(SurrogateModelUserDist::InvalidFloatingPointNumber);
}

/** Writes the segment's values from `position` on and returns the position behind them. */
double* expand(const DistributionSegment& segment, double* position)
{
    if (segment.count == 1) {
        *position = segment.minimum;
        return position + 1;
    }
    // A running sum, not minimum + i * step: saved projects rely on exactly these bits. The last
    // value is the maximum itself, free of the sum's rounding.
    const double step = (segment.maximum - segment.minimum) / (segment.count - 1);
    double value = segment.minimum;
    for (std::int32_t i = 1; i < segment.count; ++i) {
        *position++ = value;
        value += step;
    }
    *position++ = segment.maximum;
    return position;
}

const char* messageOf(SurrogateModelUserDist::ParseErrorCode code)
{
    switch (code) {
    case SurrogateModelUserDist::InvalidFloatingPointNumber:
        return "Invalid floating point number";
    case SurrogateModelUserDist::MinimumOutOfBounds:
        return "Minimum range is too large or too small";
    case SurrogateModelUserDist::MaximumOutOfBounds:
        return "Maximum range is too large or too small";
    case SurrogateModelUserDist::ValueOutOfRange:
        return "Value is out of range";
    case SurrogateModelUserDist::TooManyValues:
        return "Number of values too large";
    case SurrogateModelUserDist::NoValues:
        return "You must specify at least one value";
    case SurrogateModelUserDist::MinimumLargerThanMaximum:
        return "Range minimum is larger than range maximum";
    case SurrogateModelUserDist::EqualBoundsNeedOnePoint:
        return "If minimum value range equals maximum value range, "
               "number of points must be 1";
    case SurrogateModelUserDist::TooFewValues:
        return "The number of values must be greater than 1";
    case SurrogateModelUserDist::NoValueRange:
        return "No value range specified";
    case SurrogateModelUserDist::NoError:
    case SurrogateModelUserDist::NotYetParsed:
        break;
    }
    return "No error";
}

} // namespace

class SURROGATEMODEL_NO_EXPORT SurrogateModelUserDist::Impl
{
public:
    explicit Impl(const std::string& text) : sourceText(text) {}

    void parse();
    void parseOnce();
    void expandInto(std::vector<double>& values) const;

    ParseErrorCode errorCode = NotYetParsed;
    std::uint64_t valueCount = 0;
    std::string errorText;
    const std::string sourceText;
    std::vector<DistributionSegment> segments;
};

void SurrogateModelUserDist::Impl::parse()
{
    valueCount = 0;
    segments.clear();
    errorCode = NoError;

    const QStringList parts =
        QString::fromStdString(sourceText).split(QLatin1Char(','), Qt::KeepEmptyParts);
    ItemPatterns patterns;
    for (const QString& part : parts) {
        const QString item = part.trimmed();
        try {
            segments.push_back(patterns.parse(item));
        } catch (const ParseError& error) {
            errorText = (boost::format("Expression: %1%\n%2%") % item.toStdString() %
                         messageOf(error.code()))
                            .str();
            errorCode = error.code();
            return;
        }
        valueCount += static_cast<std::uint64_t>(segments.back().count);
    }
}

void SurrogateModelUserDist::Impl::parseOnce()
{
    if (errorCode == NotYetParsed) {
        parse();
    }
}

void SurrogateModelUserDist::Impl::expandInto(std::vector<double>& values) const
{
    values.resize(valueCount);
    double* position = values.data();
    for (const DistributionSegment& segment : segments) {
        position = expand(segment, position);
    }
    // Stable: of 0 and -0, which are equal, the first one in the text is kept.
    std::stable_sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

SurrogateModelUserDist::SurrogateModelUserDist(const std::string& text)
    : impl(std::make_unique<Impl>(text))
{}

SurrogateModelUserDist::~SurrogateModelUserDist() = default;

SurrogateModelUserDist::ParseErrorCode SurrogateModelUserDist::validate()
{
    impl->parseOnce();
    return impl->errorCode;
}

bool SurrogateModelUserDist::isValid() const
{
    impl->parseOnce();
    return impl->errorCode == NoError;
}

std::uint64_t SurrogateModelUserDist::valueCount() const
{
    return isValid() ? impl->valueCount : 0;
}

std::string SurrogateModelUserDist::errorString() const
{
    return impl->errorText;
}

std::string SurrogateModelUserDist::refusal() const
{
    if (isValid()) {
        return "";
    }
    const std::string& fault = impl->errorText;
    const std::size_t end = fault.rfind('\n');
    const bool hasItem = end > std::string("Expression: ").size();
    return (hasItem ? fault.substr(0, end) + ": " : "") + fault.substr(end + 1) +
           ". Write numbers and ranges like 4 - 80 : 20, 42.";
}

void SurrogateModelUserDist::get(std::vector<double>& values) const
{
    impl->parse();
    if (impl->errorCode == NoError) {
        impl->expandInto(values);
    }
}
