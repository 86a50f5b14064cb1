#pragma once

#include <cctype>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace fittingtest {

/**
 * Reads an equation as a user would type it elsewhere and computes its value: numbers, V1, V2, ...,
 * + - * ^ and parentheses, with the usual precedence, and one newline at the end.
 */
class EquationEvaluator
{
public:
    EquationEvaluator(std::string text, std::vector<double> inputs)
        : text(std::move(text)), inputs(std::move(inputs))
    {}

    double value()
    {
        position = 0;
        const double result = sum();
        if (text.substr(position) != "\n") {
            fail("the end of the line");
        }
        return result;
    }

private:
    [[noreturn]] void fail(const std::string& expected) const
    {
        throw std::runtime_error("expected " + expected + " at \"" + text.substr(position) + "\"");
    }
    bool take(char wanted)
    {
        while (position < text.size() && text[position] == ' ') {
            ++position;
        }
        if (position >= text.size() || text[position] != wanted) {
            return false;
        }
        ++position;
        return true;
    }
    double sum()
    {
        double result = take('-') ? -product() : product();
        for (;;) {
            if (take('+')) {
                result += product();
            } else if (take('-')) {
                result -= product();
            } else {
                return result;
            }
        }
    }
    double product()
    {
        double result = power();
        while (take('*')) {
            result *= power();
        }
        return result;
    }
    double power()
    {
        const double base = atom();
        return take('^') ? std::pow(base, atom()) : base;
    }
    double atom()
    {
        if (take('(')) {
            const double result = sum();
            if (!take(')')) {
                fail(")");
            }
            return result;
        }
        if (take('V')) {
            return inputs.at(read<std::size_t>() - 1);
        }
        return read<double>();
    }
    template <typename Number>
    Number read()
    {
        Number number{};
        const char* begin = text.data() + position;
        const auto [end, code] = std::from_chars(begin, text.data() + text.size(), number);
        if (code != std::errc()) {
            fail("a number");
        }
        position += static_cast<std::size_t>(end - begin);
        return number;
    }

    std::string text;
    std::vector<double> inputs;
    std::size_t position = 0;
};

} // namespace fittingtest
