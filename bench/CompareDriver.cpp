// Fits and predicts what bench/compare/compare.py asks for. Reads one task a line from standard
// input and answers each with one line: JSON objects, described in bench/compare/worker.py. Tables
// come as files of native doubles, one column after the other.
#include "LikelihoodUnit.h"
#include "TestFunctions.h"

#include <mirel_fitting/KrigingSurrogateModel.h>
#include <mirel_fitting/SurrogateResponseSurfaceModel.h>
#include <mirel_fitting/ThreadCount.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Json = nlohmann::json;

struct Table
{
    std::vector<std::vector<double>> columns;
    std::size_t rows = 0;
};

Table readTable(const std::string& path, std::size_t columns)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const auto bytes = static_cast<std::size_t>(std::max<std::streamoff>(file.tellg(), 0));
    Table table;
    table.rows = bytes / sizeof(double) / columns;
    if (table.rows == 0 || table.rows * columns * sizeof(double) != bytes) {
        throw std::runtime_error("The table '" + path + "' should hold " + std::to_string(columns) +
                                 " columns of doubles, but has " + std::to_string(bytes) +
                                 " bytes.");
    }
    file.seekg(0);
    table.columns.assign(columns, std::vector<double>(table.rows));
    for (std::vector<double>& column : table.columns) {
        file.read(reinterpret_cast<char*>(column.data()),
                  static_cast<std::streamsize>(table.rows * sizeof(double)));
    }
    return table;
}

/** Repeats a measurement as the task says: at most `repeats` times, none after `seconds`. */
class Stopwatch
{
public:
    explicit Stopwatch(const Json& task)
        : repeats(task.at("repeats").get<int>()), seconds(task.at("seconds").get<double>())
    {}

    /** Runs at least once; the least of each time is kept in `answer` as NAME_cpu, NAME_wall. */
    template <class Action>
    void measure(Json& answer, const std::string& name, const Action& action) const
    {
        double leastCpu = std::numeric_limits<double>::infinity();
        double leastWall = leastCpu;
        double spent = 0.0;
        for (int i = 0; i < repeats && (i == 0 || spent < seconds); ++i) {
            const auto wallStart = std::chrono::steady_clock::now();
            const std::clock_t cpuStart = std::clock();
            action();
            const double cpu = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
            const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - wallStart;
            leastCpu = std::min(leastCpu, cpu);
            leastWall = std::min(leastWall, wall.count());
            spent += wall.count();
        }
        answer[name + "_cpu"] = leastCpu;
        answer[name + "_wall"] = leastWall;
    }

private:
    int repeats;
    double seconds;
};

std::vector<double> predict(const SurrogateModelInterface& model,
                            const std::vector<double*>& inputs, std::size_t rows)
{
    std::vector<double> values(rows);
    std::vector<double*> outputs{values.data()};
    model.interpolateDependentValues(inputs, {0}, outputs, rows);
    return values;
}

void scoreAndPredict(Json& answer, const Json& task, const SurrogateModelInterface& model)
{
    const auto inputs = task.at("inputs").get<std::size_t>();
    Table points = readTable(task.at("points"), inputs + 1);
    std::vector<double*> coordinates = pointersTo(points.columns);
    coordinates.pop_back();
    answer["error"] =
        relativeError(predict(model, coordinates, points.rows), points.columns.back());

    for (const char* name : {"scattered", "grid"}) {
        if (task.contains(name)) {
            Table queries = readTable(task.at(name), inputs);
            Stopwatch(task).measure(
                answer, name, [&] { predict(model, pointersTo(queries.columns), queries.rows); });
        }
    }
}

Json fitKriging(const Json& task)
{
    Table cases = readTable(task.at("cases"), task.at("inputs").get<std::size_t>() + 1);
    std::vector<double*> inputs = pointersTo(cases.columns);
    std::vector<double*> output{inputs.back()};
    inputs.pop_back();

    KrigingOptions options;
    options.trendOrder = task.at("trend").get<int>();
    Json answer;
    std::unique_ptr<KrigingSurrogateModel> model;
    Stopwatch(task).measure(answer, "fit", [&] {
        model = std::make_unique<KrigingSurrogateModel>(inputs, output,
                                                        static_cast<int>(cases.rows), options);
        model->activateDependentVariables({0});
    });
    const KrigingReport report = model->krigingReport(0);
    answer["log_likelihood"] = report.logLikelihood;
    answer["nugget"] = report.nugget;
    answer["lengths"] = report.correlationLengths;
    scoreAndPredict(answer, task, *model);
    return answer;
}

Json fitResponseSurface(const Json& task)
{
    Table cases = readTable(task.at("cases"), task.at("inputs").get<std::size_t>() + 1);
    std::vector<double*> inputs = pointersTo(cases.columns);
    std::vector<double*> output{inputs.back()};
    inputs.pop_back();

    Json answer;
    std::unique_ptr<SurrogateResponseSurfaceModel> model;
    Stopwatch(task).measure(answer, "fit", [&] {
        model = std::make_unique<SurrogateResponseSurfaceModel>(inputs, output, cases.rows);
        model->activateDependentVariables({0});
    });
    scoreAndPredict(answer, task, *model);
    return answer;
}

Json measureUnit(const Json& task)
{
    Table cases = readTable(task.at("cases"), task.at("inputs").get<std::size_t>() + 1);
    std::vector<double> output = std::move(cases.columns.back());
    cases.columns.pop_back();
    const std::vector<double> lengths(cases.columns.size(), 1.0);
    LikelihoodUnit unit(std::move(cases.columns), std::move(output));

    Json answer;
    double likelihood = 0.0;
    // Any lengths cost the same; the nugget keeps the factorisation sound at these.
    Stopwatch(task).measure(answer, "unit", [&] { likelihood = unit.evaluate(lengths, 1e-8); });
    answer["log_likelihood"] = likelihood;
    answer["gradient"] = unit.gradient();
    return answer;
}

Json answerTo(const Json& task)
{
    const std::string kind = task.at("task");
    if (kind == "kriging") {
        return fitKriging(task);
    }
    if (kind == "surface") {
        return fitResponseSurface(task);
    }
    if (kind == "unit") {
        return measureUnit(task);
    }
    throw std::runtime_error("The task should be kriging, surface or unit, but is '" + kind + "'.");
}

} // namespace

int main()
{
    setThreadCount(1);
    std::cout << Json{{"ready", "mirel_fitting"}} << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        Json answer;
        try {
            answer = answerTo(Json::parse(line));
        } catch (const std::exception& failure) {
            answer = Json{{"failure", failure.what()}};
        }
        std::cout << answer << std::endl;
    }
    return 0;
}
