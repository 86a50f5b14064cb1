#pragma once

#include <mirel_modelexport/ModelExport.h>

#include <mirel_fitting/ColumnPointers.h>
#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/tests/UniformNumbers.h>

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <sys/wait.h>

namespace exporttest {

using Column = std::vector<double>;

enum Kind
{
    Polynomial,
    Kriging
};

/** Cases by columns. */
struct Cases
{
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
    std::vector<Column> inputs;
    std::vector<Column> outputs;
    Column correlationLengths = {}; ///< none: estimated, and the trend lowered where it costs much
    std::vector<OutputTransform> transforms = {}; ///< whose values the outputs are; none: of none

    std::size_t count() const { return outputs.at(0).size(); }

    boost::shared_ptr<SurrogateModelInterface> fit(Kind kind)
    {
        if (kind == Polynomial) {
            return boost::make_shared<SurrogateResponseSurfaceModel>(pointersTo(inputs),
                                                                     pointersTo(outputs), count());
        }
        KrigingOptions options;
        options.correlationLengths = correlationLengths;
        return boost::make_shared<KrigingSurrogateModel>(pointersTo(inputs), pointersTo(outputs),
                                                         static_cast<int>(count()), options);
    }

    ExportedModel exported(Kind kind)
    {
        std::vector<ExportedModel::Input> named;
        for (std::size_t k = 0; k < inputs.size(); ++k) {
            const auto [smallest, largest] =
                std::minmax_element(inputs[k].begin(), inputs[k].end());
            named.push_back({inputNames[k], *smallest, *largest});
        }
        std::vector<ExportedModel::WantedOutput> wanted;
        for (std::size_t k = 0; k < outputs.size(); ++k) {
            wanted.push_back({outputNames[k], static_cast<int>(k)});
        }
        ExportedModel model = ExportedModel::of(*fit(kind), named, wanted);
        for (std::size_t k = 0; k < transforms.size(); ++k) {
            model.outputs[k].model.predictor.transform = transforms[k];
        }
        return model;
    }
};

inline std::string jsonOf(Cases cases, Kind kind)
{
    return exportModel(cases.exported(kind), ExportFormat::Json);
}

/** A smooth function of inputs from 0 to 1. */
inline double smooth(const Column& u, double phase)
{
    double value = 1.0;
    for (std::size_t k = 0; k < u.size(); ++k) {
        value +=
            std::sin(phase + (1.0 + 0.2 * static_cast<double>(k)) * u[k]) * (k % 2 == 0 ? 2 : 1);
        value += k > 0 ? u[k] * u[k - 1] : 0.0;
    }
    return value;
}

/** Inputs over [low, high], outputs in units of `unit` about `offset`. */
inline Cases smoothCases(std::size_t count, std::size_t inputs, double low, double high,
                         double offset, double unit)
{
    UniformNumbers random(17);
    Cases cases;
    cases.inputs.resize(inputs);
    cases.outputs.resize(2);
    for (std::size_t k = 0; k < inputs; ++k) {
        cases.inputNames.push_back("input " + std::to_string(k));
    }
    cases.outputNames = {"first", "second"};
    for (std::size_t i = 0; i < count; ++i) {
        Column u;
        for (std::size_t k = 0; k < inputs; ++k) {
            u.push_back(random.next());
            cases.inputs[k].push_back(low + (high - low) * u.back());
        }
        cases.outputs[0].push_back(offset + unit * smooth(u, 0.0));
        cases.outputs[1].push_back(offset - unit * smooth(u, 1.0) * smooth(u, 0.5));
    }
    return cases;
}

/** NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3 (Czitrom and Spagon 1997), under names
 *  that files of other languages have to be careful with. */
inline Cases cvd()
{
    return {{"Pressure, \"total\" */ /* ?\?/", "H\xE2\x82\x82/WF\xE2\x82\x86 \xE2\x80\xAE# \\"},
            {"Uniformit\xC3\xA4t\n'%", "Stress\\"},
            {{80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42},
             {6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6}},
            {{4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0},
             {8.04, 7.78, 7.58, 7.27, 6.49, 7.69, 6.66, 7.16, 8.33, 8.19, 7.9}}};
}

/** The same with lengths given, so that Kriging keeps its linear trend. */
inline Cases cvdWithTrend()
{
    Cases cases = cvd();
    cases.correlationLengths = {60.0, 8.0};
    return cases;
}

struct NamedCases
{
    std::string name;
    Cases cases;
};

/** What models can look like. */
inline std::vector<NamedCases> varieties()
{
    Cases constantInput = smoothCases(12, 3, 0.0, 1.0, 0.0, 1.0);
    constantInput.inputs[1].assign(12, 7.25);
    Cases constantOutput = smoothCases(8, 2, -1.0, 1.0, 0.0, 1.0);
    constantOutput.outputs[0].assign(8, 1.0 / 3.0);
    Cases noisy = smoothCases(40, 2, 0.0, 10.0, 0.0, 1.0);
    UniformNumbers random(4);
    for (double& value : noisy.outputs[0]) {
        value += 0.5 * random.next();
    }
    Cases transformed = smoothCases(30, 2, 0.0, 1.0, 3.0, 1.0); // the second root turns negative
    transformed.transforms = {OutputTransform::Logarithm, OutputTransform::SquareRoot};
    return {{"cvd", cvd()},
            {"transformed", transformed},
            {"linearTrend", cvdWithTrend()},
            {"oneInput", smoothCases(9, 1, -3.0, 5.0, 10.0, 1.0)},
            {"eightInputs", smoothCases(60, 8, -1.0, 1.0, 0.0, 100.0)},
            {"noInput", smoothCases(5, 0, 0.0, 1.0, 2.0, 1.0)},
            {"tinyInputs", smoothCases(30, 2, 1e-12, 5e-12, 0.0, 1e12)},
            {"hugeInputs", smoothCases(30, 2, -4e12, 1e12, 3e-12, 1e-12)},
            {"farFromZero", smoothCases(30, 2, 1e6, 1e6 + 1.0, 1e6, 1.0)},
            {"constantInput", constantInput},
            {"constantOutput", constantOutput},
            {"oneCase", smoothCases(1, 2, 0.0, 1.0, 0.0, 1.0)},
            {"noisy", noisy}};
}

/** Points inside the ranges of the cases and somewhat beyond; by rows. */
inline std::vector<Column> pointsFor(const ExportedModel& model, std::size_t count)
{
    UniformNumbers random(99);
    std::vector<Column> points(count);
    for (Column& point : points) {
        for (const ExportedModel::Input& input : model.inputs) {
            const double share = 1.2 * random.next() - 0.1;
            point.push_back(input.minimum + share * (input.maximum - input.minimum));
        }
    }
    return points;
}

/** The library's predictions, by points. */
inline std::vector<Column> predictions(const ExportedModel& model,
                                       const std::vector<Column>& points)
{
    const auto predictor = model.predictor();
    std::vector<Column> all;
    for (Column point : points) {
        std::vector<double*> inputs;
        for (double& coordinate : point) {
            inputs.push_back(&coordinate);
        }
        Column values(model.outputs.size());
        for (std::size_t k = 0; k < values.size(); ++k) {
            std::vector<double*> output = {&values[k]};
            predictor->interpolateDependentValues(inputs, {static_cast<int>(k)}, output, 1);
        }
        all.push_back(values);
    }
    return all;
}

/**
 * How far an export may be off: a few units in the last place of what a response surface adds up;
 * 4 eps sum |w_i r_i| and 1e-12 of the output's standard deviation for Kriging, and one more unit
 * of what comes out.
 */
inline double toleranceOfTransform(const PredictorDescription& predictor, const Column& point,
                                   double value)
{
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    Column coordinates;
    for (const PredictorDescription::Coordinate& coordinate : predictor.coordinates) {
        coordinates.push_back((point[coordinate.input] - coordinate.origin) / coordinate.unit);
    }
    if (predictor.kind == PredictorDescription::Kind::Polynomial) {
        double size = std::fabs(predictor.offset);
        for (const PredictorDescription::Term& term : predictor.terms) {
            double product = std::fabs(term.coefficient);
            for (const std::size_t factor : {term.first, term.second}) {
                product *=
                    factor == PredictorDescription::noFactor ? 1.0 : std::fabs(coordinates[factor]);
            }
            size += product;
        }
        return 4.0 * epsilon * size;
    }
    double sum = 0.0;
    const std::size_t cases = predictor.weights.size();
    for (std::size_t j = 0; j < cases; ++j) {
        double correlation = 1.0;
        for (std::size_t k = 0; k < coordinates.size(); ++k) {
            const double z = std::sqrt(5.0) *
                             std::fabs(coordinates[k] - predictor.cases[k * cases + j]) /
                             predictor.lengths[k];
            correlation *= (1.0 + z + z * z / 3.0) * std::exp(-z);
        }
        sum += std::fabs(predictor.weights[j]) * correlation;
    }
    return predictor.scale * (4.0 * epsilon * sum + 1e-12) + 2.0 * epsilon * std::fabs(value);
}

/** The same of the output, with two more units in its last place if it is transformed. */
inline double tolerance(const PredictorDescription& predictor, const Column& point, double value)
{
    const double transformed = OutputTransforms::apply(predictor.transform, value);
    const double off = toleranceOfTransform(predictor, point, transformed);
    const double size = OutputTransforms::invert(predictor.transform, transformed + off) -
                        OutputTransforms::invert(predictor.transform, transformed - off);
    return predictor.transform == OutputTransform::None
               ? off
               : size + 4.0 * std::numeric_limits<double>::epsilon() * std::fabs(value);
}

/** @param looser for each point and output, what may be off beyond rounding; none: nothing. */
inline void expectAgreement(const ExportedModel& model, const std::vector<Column>& points,
                            const std::vector<Column>& values, const std::string& what,
                            const std::vector<Column>& looser = {})
{
    const std::vector<Column> expected = predictions(model, points);
    ASSERT_EQ(values.size(), points.size()) << what;
    for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(values[i].size(), model.outputs.size()) << what;
        for (std::size_t k = 0; k < model.outputs.size(); ++k) {
            EXPECT_NEAR(values[i][k], expected[i][k],
                        tolerance(model.outputs[k].model.predictor, points[i], expected[i][k]) +
                            (looser.empty() ? 0.0 : looser[i][k]))
                << what << ", point " << i << ", output " << k;
        }
    }
}

inline std::string exactText(double value)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << value;
    return text.str();
}

/** The numbers of a text, one a line. */
inline Column numbersOf(const std::string& text)
{
    Column numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        numbers.push_back(std::strtod(line.c_str(), nullptr));
    }
    return numbers;
}

/** Numbers that follow each other, as so many rows of the same size. */
inline std::vector<Column> rowsOf(const Column& numbers, std::size_t rows)
{
    std::vector<Column> result(rows);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        result[i * rows / numbers.size()].push_back(numbers[i]);
    }
    return result;
}

/** A folder for what a test writes and runs. */
class ExportFolder : public ::testing::Test
{
protected:
    struct Outcome
    {
        int exitCode = -1;
        std::string out;
        std::string err;
    };

    ExportFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "modelexport-XXXXXX").string();
        folder = mkdtemp(path.data());
    }

    ~ExportFolder() override { std::filesystem::remove_all(folder); }

    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(folder / name, std::ios::binary) << content;
    }

    std::string read(const std::string& name) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    /** Runs it through the shell in the folder. */
    Outcome run(const std::string& command) const
    {
        const std::string line =
            "cd '" + folder.string() + "' && { " + command + "; } > out.txt 2> err.txt";
        const int status = std::system(line.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("out.txt"), read("err.txt")};
    }

    static std::string arguments(const Column& point)
    {
        std::string text;
        for (const double value : point) {
            text += ' ' + exactText(value);
        }
        return text;
    }

    std::filesystem::path folder;
};

/** The text with what follows the last `mark` made another number: its first digit that is no 0
 *  is changed. */
inline std::string corrupted(std::string text, const std::string& mark)
{
    const std::size_t digit = text.find_first_of("123456789", text.rfind(mark) + mark.size());
    text[digit] = text[digit] == '9' ? '8' : static_cast<char>(text[digit] + 1);
    return text;
}

} // namespace exporttest
