#include <surrogatemodel/SurrogateModelUserDist.h>

#include <mirel_property/ExceptionBase.h>

#include <boost/format.hpp>

#include <QString>
#include <QStringView>

#include <algorithm>
#include <charconv>
#include <map>
#include <system_error>

namespace {

using ParseErrorCode = SurrogateModelUserDist::ParseErrorCode;

/** The largest count that one range may ask for. */
const int MaxValuesPerItem = 1000000;

/** The first fault of an item, on its way from the item to the loop over the items. */
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

/** A number as it stands in an item. */
struct NumberText
{
    QStringView text;
    bool hasOnePointAtMost = true;
    bool isZero = true; ///< all digits before the exponent are 0
};

bool isBetween(QChar c, char first, char last)
{
    return c >= QLatin1Char(first) && c <= QLatin1Char(last);
}

/**
 * Walks along an item, blanks around it removed. The grammar is that of two regular expressions,
 * with NUM short for [-+]?[\.]?[0-9]*\.?[0-9]+(?:[eE][-+]?[0-9]+)? :
 *
 *   single value  ^(NUM)$
 *   range         ^(NUM)\s*-\s*(NUM)\s*\:\s*([+]?\d+)$
 *
 * A blank and a digit of the count are those of any script. What can follow a part cannot continue
 * it, so that taking as much as fits, once, finds every match that there is.
 */
class ItemScanner
{
public:
    explicit ItemScanner(QStringView item) : position(item.begin()), end(item.end()) {}

    bool isAtEnd() const { return position == end; }

    void skipBlanks()
    {
        while (position != end && position->isSpace()) {
            ++position;
        }
    }

    bool skip(char expected)
    {
        const bool isThere = position != end && *position == QLatin1Char(expected);
        position += isThere;
        return isThere;
    }

    /** NUM; a few texts are one that are no number, such as "..5". */
    bool read(NumberText& number)
    {
        const auto start = position;
        skipSign();
        const bool hasPoint = skip('.');
        bool hasDigits = skipDigits(number.isZero);
        if (skip('.')) {
            number.hasOnePointAtMost = !hasPoint;
            hasDigits = skipDigits(number.isZero);
        }
        skipExponent();
        number.text = QStringView(start, position);
        return hasDigits;
    }

    /** [+]?\d+ */
    bool readCount(QStringView& count)
    {
        const auto start = position;
        skip('+');
        const auto digits = position;
        while (position != end && position->isDigit()) {
            ++position;
        }
        count = QStringView(start, position);
        return position != digits;
    }

private:
    void skipSign()
    {
        if (!skip('-')) {
            skip('+');
        }
    }

    bool skipDigits(bool& areAllZero)
    {
        const auto start = position;
        for (; position != end && isBetween(*position, '0', '9'); ++position) {
            areAllZero = areAllZero && *position == QLatin1Char('0');
        }
        return position != start;
    }

    /** One without digits is none; nothing accepts its letter then. */
    void skipExponent()
    {
        const auto start = position;
        if (!skip('e') && !skip('E')) {
            return;
        }
        skipSign();
        bool areAllZero = true;
        if (!skipDigits(areAllZero)) {
            position = start;
        }
    }

    QStringView::const_iterator position;
    QStringView::const_iterator end;
};

/**
 * The number as double; `fault` if it is none, or none that fits. The toolkit's conversion says
 * which those are. It rounds correctly, like that of the standard library, which takes a fifth of
 * the time for what is no special case.
 */
double toDouble(const NumberText& number, ParseErrorCode fault)
{
    if (!number.hasOnePointAtMost) {
        throw ParseError(fault);
    }
    char characters[64];
    const auto length = static_cast<std::size_t>(number.text.size());
    if (length <= sizeof characters) {
        std::transform(number.text.begin(), number.text.end(), characters,
                       [](QChar c) { return c.toLatin1(); });
        const char* const start = characters + (characters[0] == '+' ? 1 : 0);
        double value = 0.0;
        const auto [stop, error] = std::from_chars(start, characters + length, value);
        if (error == std::errc() && stop == characters + length &&
            (value != 0.0 || number.isZero)) {
            return value;
        }
    }
    bool converted = false;
    const double value = number.text.toString().toDouble(&converted);
    if (!converted) {
        throw ParseError(fault);
    }
    return value;
}

/** Digits of other scripts than 0 to 9 make no number. */
std::int32_t toCount(QStringView text)
{
    std::int32_t count = 0;
    for (const QChar digit : text.mid(text.startsWith(QLatin1Char('+')) ? 1 : 0)) {
        if (!isBetween(digit, '0', '9')) {
            throw ParseError(SurrogateModelUserDist::TooManyValues);
        }
        // No larger number can come of it, and one too large stays too large.
        count = std::min(10 * count + (digit.unicode() - '0'), MaxValuesPerItem + 1);
    }
    if (count > MaxValuesPerItem) {
        throw ParseError(SurrogateModelUserDist::TooManyValues);
    }
    if (count == 0) {
        throw ParseError(SurrogateModelUserDist::NoValues);
    }
    return count;
}

DistributionSegment makeRange(const NumberText& first, const NumberText& last, QStringView values)
{
    // The order of the checks decides which of several faults the user is told.
    const double minimum = toDouble(first, SurrogateModelUserDist::MinimumOutOfBounds);
    const double maximum = toDouble(last, SurrogateModelUserDist::MaximumOutOfBounds);
    const std::int32_t count = toCount(values);

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

DistributionSegment parseItem(QStringView item)
{
    if (item.isEmpty()) {
        throw ParseError(SurrogateModelUserDist::NoValueRange);
    }
    ItemScanner scanner(item);
    NumberText first;
    if (!scanner.read(first)) {
        throw ParseError(SurrogateModelUserDist::InvalidFloatingPointNumber);
    }
    if (scanner.isAtEnd()) {
        const double value = toDouble(first, SurrogateModelUserDist::ValueOutOfRange);
        return {value, value, 1};
    }
    NumberText last;
    QStringView values;
    const auto skipBetweenBlanks = [&scanner](char expected) {
        scanner.skipBlanks();
        const bool isThere = scanner.skip(expected);
        scanner.skipBlanks();
        return isThere;
    };
    if (skipBetweenBlanks('-') && scanner.read(last) && skipBetweenBlanks(':') &&
        scanner.readCount(values) && scanner.isAtEnd()) {
        return makeRange(first, last, values);
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

/** Where the stretches of `values` that are in order end. */
std::vector<std::ptrdiff_t> endsOfRuns(const std::vector<double>& values)
{
    std::vector<std::ptrdiff_t> ends;
    for (auto run = values.begin(); run != values.end();) {
        run = std::is_sorted_until(run, values.end());
        ends.push_back(run - values.begin());
    }
    return ends;
}

/** Merges two neighbouring runs; of equal values those of the first come first. */
void mergeRuns(const double* first, const double* middle, const double* last, double* target)
{
    const double* left = first;
    const double* right = middle;
    // Without a branch: which run the next value comes from is anybody's guess.
    while (left != middle && right != last) {
        const bool isRight = *right < *left;
        *target++ = isRight ? *right : *left;
        right += isRight;
        left += !isRight;
    }
    std::copy(right, last, std::copy(left, middle, target));
}

/**
 * Sorts ascending, equal values in the order of the text. A range is in order but for its last
 * value at most, so that a text has few runs, unless it lists single values.
 */
void sortRuns(std::vector<double>& values)
{
    constexpr std::size_t shortRun = 32; // shorter ones are not worth a pass of their own
    std::vector<std::ptrdiff_t> ends = endsOfRuns(values);
    if (ends.size() > 1 + values.size() / shortRun) {
        std::stable_sort(values.begin(), values.end());
        return;
    }
    std::vector<double> merged(ends.size() > 1 ? values.size() : 0);
    while (ends.size() > 1) {
        std::vector<std::ptrdiff_t> mergedEnds;
        std::ptrdiff_t start = 0;
        for (std::size_t run = 0; run < ends.size(); run += 2) {
            const std::ptrdiff_t end = ends[std::min(run + 1, ends.size() - 1)];
            mergeRuns(values.data() + start, values.data() + ends[run], values.data() + end,
                      merged.data() + start);
            mergedEnds.push_back(end);
            start = end;
        }
        values.swap(merged);
        ends.swap(mergedEnds);
    }
}

} // namespace

class SURROGATEMODEL_NO_EXPORT SurrogateModelUserDist::Impl
{
public:
    explicit Impl(const std::string& text)
        : sourceText(text), messages{
                                {NoError, "No error"},
                                {InvalidFloatingPointNumber, "Invalid floating point number"},
                                {MinimumOutOfBounds, "Minimum range is too large or too small"},
                                {MaximumOutOfBounds, "Maximum range is too large or too small"},
                                {ValueOutOfRange, "Value is out of range"},
                                {TooManyValues, "Number of values too large"},
                                {NoValues, "You must specify at least one value"},
                                {MinimumLargerThanMaximum,
                                 "Range minimum is larger than range maximum"},
                                {EqualBoundsNeedOnePoint,
                                 "If minimum value range equals maximum value range, "
                                 "number of points must be 1"},
                                {TooFewValues, "The number of values must be greater than 1"},
                                {NoValueRange, "No value range specified"},
                            }
    {}

    void parse();
    void parseOnce();
    void expandInto(std::vector<double>& values) const;

    ParseErrorCode errorCode = NotYetParsed;
    std::uint64_t valueCount = 0;
    std::string errorText;
    const std::string sourceText;
    std::vector<DistributionSegment> segments;
    const std::map<int, std::string> messages;
};

void SurrogateModelUserDist::Impl::parse()
{
    valueCount = 0;
    segments.clear();
    errorCode = NoError;

    const QString text = QString::fromStdString(sourceText);
    int start = 0;
    while (start <= text.size()) {
        const int comma = text.indexOf(QLatin1Char(','), start);
        const int end = comma < 0 ? text.size() : comma;
        const QStringView item = QStringView(text).mid(start, end - start).trimmed();
        start = end + 1;
        try {
            segments.push_back(parseItem(item));
        } catch (const ParseError& error) {
            errorText = (boost::format("Expression: %1%\n%2%") % item.toString().toStdString() %
                         messages.at(error.code()))
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
    sortRuns(values);
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

std::string SurrogateModelUserDist::errorString() const
{
    return impl->errorText;
}

void SurrogateModelUserDist::get(std::vector<double>& values) const
{
    impl->parse();
    if (impl->errorCode == NoError) {
        impl->expandInto(values);
    }
}
