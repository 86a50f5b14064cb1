#include <mirel_datamanagement/Variable.h>

#include <mirel_datamanagement/VariableImpl.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

namespace {

std::size_t nextIdentity()
{
    static std::atomic<std::size_t> last{0};
    return ++last;
}

} // namespace

Variable::Impl::Impl(std::string name, Nature nature, std::vector<double> values)
    : identity(nextIdentity()), nameText(std::move(name)), natureValue(nature), holdsNumbers(true),
      numbers(std::move(values))
{}

Variable::Impl::Impl(std::string name, Nature nature, std::vector<std::string> values)
    : identity(nextIdentity()), nameText(std::move(name)), natureValue(nature), holdsNumbers(false),
      texts(std::move(values))
{}

void Variable::Impl::prepareToAppend(std::size_t rows)
{
    holdsNumbers ? numbers.prepareToAppend(rows) : texts.prepareToAppend(rows);
}

void Variable::Impl::appendMissing(std::size_t rows) noexcept
{
    // A missing cell is no finite value: what is known of the range stays true.
    if (holdsNumbers) {
        std::vector<double>& cells = numbers.writable();
        cells.resize(cells.size() + rows, std::numeric_limits<double>::quiet_NaN());
    } else {
        std::vector<std::string>& cells = texts.writable();
        cells.resize(cells.size() + rows);
    }
}

void Variable::Impl::prepareToErase()
{
    if (holdsNumbers) {
        numbers.writable();
    } else {
        texts.writable();
    }
}

void Variable::Impl::eraseRow(std::size_t row) noexcept
{
    const auto offset = static_cast<std::ptrdiff_t>(row);
    if (holdsNumbers) {
        std::vector<double>& cells = numbers.writable();
        cells.erase(cells.begin() + offset);
        knownRangeOfValues.reset();
    } else {
        std::vector<std::string>& cells = texts.writable();
        cells.erase(cells.begin() + offset);
    }
}

std::pair<double, double> Variable::Impl::rangeOfValues() const
{
    double minimum = std::numeric_limits<double>::infinity();
    double maximum = -minimum;
    for (const double value : numbers.get()) {
        if (std::isfinite(value)) {
            minimum = std::min(minimum, value);
            maximum = std::max(maximum, value);
        }
    }
    return minimum <= maximum ? std::make_pair(minimum, maximum) : std::make_pair(0.0, 0.0);
}

Variable::Variable(std::unique_ptr<Impl> state) : impl(std::move(state)) {}

Variable::~Variable() = default;

std::string Variable::name() const
{
    return impl->nameText;
}

Variable::Nature Variable::nature() const
{
    return impl->natureValue;
}

bool Variable::isNumeric() const
{
    return impl->holdsNumbers;
}

std::pair<double, double> Variable::range() const
{
    if (impl->chosenRange) {
        return *impl->chosenRange;
    }
    if (!impl->knownRangeOfValues) {
        impl->knownRangeOfValues = impl->rangeOfValues();
    }
    return *impl->knownRangeOfValues;
}

std::optional<std::pair<double, double>> Variable::chosenRange() const
{
    return impl->chosenRange;
}

bool Variable::isInProject() const
{
    return impl->inProject;
}
