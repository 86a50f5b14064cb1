#include <mirel_fitting/TermFormula.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <algorithm>
#include <set>

namespace {

using Error = SurrogateModelInterface::Error;
using Term = TermFormula::Term;

constexpr char blanks[] = " \t\r\n";

std::string symbolOf(std::size_t input)
{
    return "V" + std::to_string(input + 1);
}

std::vector<std::string> symbolsOf(std::size_t inputs)
{
    std::vector<std::string> names;
    for (std::size_t input = 0; input < inputs; ++input) {
        names.push_back(symbolOf(input));
    }
    return names;
}

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/** Reads terms from the left to the right. */
class Reader
{
public:
    Reader(const std::string& text, const std::vector<std::string>& names)
        : text(text), names(names)
    {}

    std::vector<Term> terms()
    {
        std::vector<Term> result;
        for (;;) {
            result.push_back(term());
            if (position == text.size()) {
                return result;
            }
            ++position; // the plus sign
        }
    }

private:
    /** Up to the plus sign behind it; empty for the constant. */
    Term term()
    {
        const std::size_t begin = position;
        Term inputs;
        for (;;) {
            addFactor(inputs);
            skipBlanks();
            if (position == text.size() || text[position] == '+') {
                break;
            }
            if (text[position] != ':' && text[position] != '*') {
                throw Error("The terms \"" + text + "\" have \"" + text.substr(position) +
                            "\" where +, : or the end is expected.");
            }
            ++position;
        }
        if (inputs.size() > 2) {
            throw Error("The term \"" + trimmed(text.substr(begin, position - begin)) +
                        "\" is of third order or higher: a response surface has terms of first and "
                        "second order.");
        }
        std::sort(inputs.begin(), inputs.end());
        return inputs;
    }

    void addFactor(Term& inputs)
    {
        skipBlanks();
        bool isQuoted = false;
        const std::string name = factorName(isQuoted);
        if (name.empty()) {
            throw Error("The terms \"" + text + "\" have an empty term.");
        }
        const auto found = std::find(names.begin(), names.end(), name);
        if (found == names.end() && (name != "1" || isQuoted)) {
            throw Error("The terms \"" + text + "\" name \"" + name + "\", which is no input.");
        }
        const int power = readPower();
        for (int k = 0; k < power && found != names.end(); ++k) {
            inputs.push_back(static_cast<std::size_t>(found - names.begin()));
        }
    }

    std::string factorName(bool& isQuoted)
    {
        if (position < text.size() && (text[position] == '"' || text[position] == '\'')) {
            const std::size_t end = text.find(text[position], position + 1);
            if (end != std::string::npos) {
                const std::string name = text.substr(position + 1, end - position - 1);
                position = end + 1;
                isQuoted = true;
                return name;
            }
        }
        const std::size_t end = std::min(text.find_first_of("+:*^", position), text.size());
        const std::string name = trimmed(text.substr(position, end - position));
        position = end;
        return name;
    }

    /** 1 where there is none; 3 for any that is too large. */
    int readPower()
    {
        skipBlanks();
        if (position == text.size() || text[position] != '^') {
            return 1;
        }
        const std::size_t end = std::min(text.find_first_of("+:*^", position + 1), text.size());
        const std::string power = trimmed(text.substr(position + 1, end - position - 1));
        position = end;
        if (power.empty() || power.find_first_not_of("0123456789") != std::string::npos ||
            power == "0") {
            throw Error("The terms \"" + text + "\" have the power \"" + power +
                        "\"; it can be 1 or 2.");
        }
        return power == "1" ? 1 : power == "2" ? 2 : 3;
    }

    void skipBlanks()
    {
        position = std::min(text.find_first_not_of(blanks, position), text.size());
    }

    const std::string& text;
    const std::vector<std::string>& names;
    std::size_t position = 0;
};

} // namespace

TermFormula::TermFormula(const std::string& text, const std::vector<std::string>& inputNames)
{
    std::set<Term> written;
    std::set<std::size_t> inputs;
    for (const Term& term : Reader(text, inputNames).terms()) {
        if (!term.empty()) {
            written.insert(term);
            inputs.insert(term.begin(), term.end());
        }
    }
    for (const std::size_t input : inputs) {
        termList.push_back({input});
        if (written.count({input}) == 0) {
            added.push_back(input);
        }
    }
    std::copy_if(written.begin(), written.end(), std::back_inserter(termList),
                 [](const Term& term) { return term.size() == 2; });
}

TermFormula::TermFormula(const std::string& text, std::size_t inputs)
    : TermFormula(text, symbolsOf(inputs))
{}

std::string TermFormula::symbols() const
{
    std::string text = "1";
    for (const Term& term : termList) {
        if (term.size() == 1 && std::count(added.begin(), added.end(), term[0]) > 0) {
            continue;
        }
        text += " + " + symbolOf(term[0]);
        text += term.size() == 2 ? ":" + symbolOf(term[1]) : "";
    }
    return text;
}
