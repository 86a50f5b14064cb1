#include "session/cases/ColumnNames.h"

#include "session/text/AsciiText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace {
/** Letters and digits alone, the letters of ASCII in lower case: "Run No." is "runno". */
std::string plainName(const std::string& name)
{
    std::string plain;
    for (const char character : lowerCaseText(name.substr(0, name.find_first_of("[(", 1)))) {
        if (isLetter(character) || isDigit(character) || character == '#' ||
            static_cast<unsigned char>(character) >= 0x80) {
            plain += character;
        }
    }
    return plain;
}

std::string withoutNumber(std::string plain)
{
    while (!plain.empty() && isDigit(plain.back())) {
        plain.pop_back();
    }
    return plain;
}

/** The plain name without a number, or an a, b or c after a blank, at its end: "OD b". */
std::string withoutRepeat(const std::string& name)
{
    std::string plain = plainName(name);
    const std::string_view text = trimmedText(name);
    if (text.size() > 2 && text[text.size() - 2] == ' ' &&
        std::string_view("abcABC").find(text.back()) != std::string_view::npos) {
        plain.pop_back();
    }
    return withoutNumber(plain);
}

/** "Response 2 Activity", as programs for the design of experiments name outputs. */
bool isNumberedResponse(const std::string& name)
{
    constexpr std::string_view word = "response";
    const std::string plain = plainName(name);
    return beginsWith(plain, word) && plain.size() > word.size() && isDigit(plain[word.size()]);
}

const std::map<NameOf, std::vector<std::string_view>> words = {
    {NameOf::Blocks, {"block", "blocks", "blk", "bloc", "bloque"}},
    {NameOf::Errors, {"error"}},
    {NameOf::FigureOfFit,
     {"fits", "resi", "sres", "tres", "fitted", "residual", "residuals", "predicted", "yhat",
      "prediction", "leverage", "resid", "cooksd"}},
    {NameOf::KindOfPoint, {"pttype", "pointtype", "centerpt"}},
    {NameOf::Numbering,
     {"#",        "run",    "runs",      "runorder",      "order",    "std",      "num",
      "stdorder", "index",  "idx",       "standardorder", "case",     "row",      "obs",
      "trial",    "exp",    "ids",       "observation",   "sample",   "seq",      "sequence",
      "test",     "lfd",    "versuch",   "experiment",    "versuchs", "unnamed0", "part",
      "serial",   "serien", "specimen",  "lot",           "batch",    "barcode",  "point",
      "node",     "record", "nodelabel", "scan",          "key",      "job",      "sim",
      "design",   "eval",   "coupon",    "simulation",    "messung"}},
    {NameOf::Output,
     {"y", "f", "out", "output", "response", "result", "target", "ausgang", "zielgroesse"}},
    {NameOf::Repeat, {"replicate", "replication", "rep", "repeat", "repetition", "wiederholung"}},
    {NameOf::Time,
     {"time", "timestamp", "date", "datetime", "zeit", "zeitstempel", "epoch", "unixtime", "datum",
      "uhrzeit", "xvalue", "ts", "epochms", "timestampms"}},
    {NameOf::X, {"x"}},
    {NameOf::Y, {"y"}},
    {NameOf::Year, {"year", "years", "yr", "jahr", "date"}}};
} // namespace

bool ColumnNames::isNameOf(NameOf kind, const std::string& name)
{
    std::string plain = plainName(name);
    if (kind == NameOf::Numbering) {
        for (const std::string_view end : {"number", "nummer", "no", "nr", "id"}) {
            const std::size_t rest = plain.size() - std::min(plain.size(), end.size());
            if (plain.substr(rest) == end) {
                plain.resize(rest);
                if (plain.empty()) {
                    return true;
                }
                break;
            }
        }
    } else if (kind == NameOf::Output || kind == NameOf::FigureOfFit) {
        plain = withoutNumber(plain);
    }
    const std::vector<std::string_view>& known = words.at(kind);
    return (kind == NameOf::Output && isNumberedResponse(name)) ||
           std::find(known.begin(), known.end(), plain) != known.end();
}

bool ColumnNames::endsAsNumbering(const std::string& fullName)
{
    std::string name = fullName.substr(0, fullName.find_first_of("[(", 1));
    while (!name.empty() && !isLetter(name.back()) && !isDigit(name.back())) {
        name.pop_back();
    }
    const std::string end = name.substr(name.size() - std::min<std::size_t>(2, name.size()));
    if (!isOneOf(lowerCaseText(end), {"no", "nr", "id"})) {
        return false;
    }
    const auto isLower = [](char letter) { return letter >= 'a' && letter <= 'z'; };
    const char before = name.size() > 2 ? name[name.size() - 3] : 'a';
    return !isLetter(before) || (isLower(before) && !isLower(end.front()));
}

bool ColumnNames::isFigureOf(const std::string& name, const std::string& output)
{
    static const WordList figures = {"hat", "pred",  "predicted", "prediction", "fit",   "fitted",
                                     "err", "error", "lower",     "upper",      "stdev", "std",
                                     "sd",  "sdof",  "resid",     "residual",   "sem"};
    const std::string plain = plainName(name);
    const std::string plainOutput = plainName(output);
    const std::size_t at = plain.find(plainOutput);
    if (plainOutput.empty() || at == std::string::npos) {
        return false;
    }
    const std::string before = plain.substr(0, at);
    const std::string behind = plain.substr(at + plainOutput.size());
    const bool isSubscript = plainOutput.size() < 3 && name.find('_') != std::string::npos &&
                             before.empty() && isOneOf(behind, {"upper", "lower"});
    return !isSubscript &&
           (at == 0 ? isOneOf(behind, figures) : behind.empty() && isOneOf(before, figures));
}

bool ColumnNames::areRepeats(const std::string& name, const std::string& output)
{
    const std::string stem = withoutRepeat(name);
    const std::string stemOfOutput = withoutRepeat(output);
    const bool hasNumber = stem != plainName(name) || stemOfOutput != plainName(output);
    return (isNumberedResponse(name) && isNumberedResponse(output)) ||
           (hasNumber && !stem.empty() && stem == stemOfOutput);
}
