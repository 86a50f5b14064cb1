// CostPictures RUN.json FOLDER: draws what CostBench measured into FOLDER/cost-by-ARGUMENT.svg, one
// panel for each benchmark with that argument, in logarithms of the argument and of the time.
#include <plot/drawing/DrawingApplication.h>
#include <plot/drawing/Picture.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/** The repetitions of a benchmark, by its argument. */
struct Curve
{
    std::string argument;
    std::string title;
    std::map<double, std::vector<double>> milliseconds;
};

double inMilliseconds(double time, const std::string& unit)
{
    const std::map<std::string, double> units = {
        {"ns", 1e-6}, {"us", 1e-3}, {"ms", 1.0}, {"s", 1e3}};
    return time * units.at(unit);
}

/** Of names such as krigingByCases/cases:100, in the order of the program's source. */
std::map<int, Curve> readCurves(const std::string& path)
{
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(path + " cannot be read.");
    }
    const nlohmann::json run = nlohmann::json::parse(file);
    std::map<int, Curve> curves;
    for (const nlohmann::json& entry : run.at("benchmarks")) {
        const std::string name = entry.at("run_name");
        const std::size_t slash = name.find('/');
        const std::size_t colon = name.find(':');
        if (entry.at("run_type") != "iteration" || slash == std::string::npos ||
            colon == std::string::npos) {
            continue;
        }
        Curve& curve = curves[entry.at("family_index").get<int>()];
        curve.argument = name.substr(slash + 1, colon - slash - 1);
        curve.title = entry.value("label", name.substr(0, slash));
        curve.milliseconds[std::stod(name.substr(colon + 1))].push_back(
            inMilliseconds(entry.at("cpu_time"), entry.at("time_unit")));
    }
    return curves;
}

std::string growth(const Curve& curve)
{
    if (curve.milliseconds.size() < 2) {
        return "";
    }
    const auto last = std::prev(curve.milliseconds.end());
    const auto before = std::prev(last);
    const auto best = [](const auto& entry) {
        return *std::min_element(entry->second.begin(), entry->second.end());
    };
    char text[80];
    std::snprintf(text, sizeof text, "Between the last two the time grows as %s^%.1f.",
                  curve.argument.c_str(),
                  std::log(best(last) / best(before)) / std::log(last->first / before->first));
    return text;
}

SweepPicture pictureOf(const Curve& curve)
{
    SweepPicture picture;
    picture.title = curve.title;
    picture.inputName = "log10 of the number of " + curve.argument;
    picture.outputName = "log10 of milliseconds of processor time";
    picture.modelLabel = "median";
    picture.caseLabel = "runs";
    picture.caption = growth(curve);
    for (const auto& [argument, times] : curve.milliseconds) {
        std::vector<double> sorted = times;
        std::sort(sorted.begin(), sorted.end());
        picture.inputs.push_back(std::log10(argument));
        picture.model.push_back(std::log10(sorted[sorted.size() / 2]));
        for (const double time : sorted) {
            picture.caseInputs.push_back(std::log10(argument));
            picture.caseOutputs.push_back(std::log10(time));
        }
    }
    return picture;
}

void draw(const std::string& run, const std::string& folder)
{
    const DrawingApplication application;
    std::map<std::string, std::vector<PictureData>> pictures;
    for (const auto& [family, curve] : readCurves(run)) {
        pictures[curve.argument].push_back(pictureOf(curve));
    }
    if (pictures.empty()) {
        throw std::runtime_error(run + " holds nothing that CostBench measures.");
    }
    for (auto& [argument, panels] : pictures) {
        PictureSize size;
        size.width = 480;
        size.height = 400;
        Picture(std::move(panels), size).write(folder + "/cost-by-" + argument + ".svg");
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3) {
        std::fputs("CostPictures: two arguments are expected, the JSON file of CostBench and a "
                   "folder.\n",
                   stderr);
        return 2;
    }
    try {
        draw(argv[1], argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "CostPictures: %s\n", error.what());
        return 1;
    }
}
