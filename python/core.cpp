/* The compiled half of the Python package: arrays in, arrays out. What users see is
 * surrogatemodel/__init__.py; surrogatemodel/_core.pyi lists what stands here. */
#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ModelInterfaces.h>
#include <mirel_fitting/ModelSettings.h>
#include <mirel_fitting/TermFormula.h>
#include <mirel_fitting/ThreadCount.h>
#include <mirel_modelexport/FitJson.h>
#include <mirel_modelexport/ModelExport.h>
#include <surrogatemodel/SurrogateModelUserDist.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <numeric>

namespace py = pybind11;

namespace {

using Array = py::array_t<double, py::array::forcecast>;
using Names = std::vector<std::string>;

/** The columns of a matrix, read in place where each is contiguous; others are copied. */
class Columns
{
public:
    explicit Columns(const Array& matrix) : rowCount(static_cast<std::size_t>(matrix.shape(0)))
    {
        const auto cells = matrix.unchecked<2>();
        const bool isAligned =
            reinterpret_cast<std::uintptr_t>(matrix.data()) % sizeof(double) == 0;
        for (py::ssize_t column = 0; column < matrix.shape(1); ++column) {
            if (isAligned && (matrix.strides(0) == sizeof(double) || rowCount <= 1) &&
                matrix.strides(1) % static_cast<py::ssize_t>(sizeof(double)) == 0) {
                // The library takes pointers to values that it only reads.
                pointers.push_back(const_cast<double*>(matrix.data(0, column)));
                continue;
            }
            std::vector<double>& copy = copies.emplace_back(rowCount);
            for (std::size_t row = 0; row < rowCount; ++row) {
                copy[row] = cells(static_cast<py::ssize_t>(row), column);
            }
            pointers.push_back(copy.data());
        }
    }

    std::size_t rowCount;
    std::vector<double*> pointers;

private:
    std::vector<std::vector<double>> copies;
};

/** With contiguous columns. */
py::array_t<double> emptyMatrix(std::size_t rows, std::size_t columns)
{
    return py::array_t<double>({rows, columns}, {sizeof(double), sizeof(double) * rows});
}

template <class ColumnOf>
py::array_t<double> matrixOf(std::size_t rows, std::size_t columns, const ColumnOf& columnOf)
{
    py::array_t<double> matrix = emptyMatrix(rows, columns);
    for (std::size_t column = 0; column < columns; ++column) {
        const std::vector<double> values = columnOf(static_cast<int>(column));
        std::copy(values.begin(), values.end(), matrix.mutable_data(0, column));
    }
    return matrix;
}

/**
 * Runs `work` without the interpreter's lock, so that other threads of Python go on. A fit looks
 * for signals now and then: Ctrl-C ends it with KeyboardInterrupt.
 */
template <class Work>
auto unlocked(std::mutex& mutex, const Work& work)
{
    using Clock = std::chrono::steady_clock;
    static constexpr auto lookEvery = std::chrono::milliseconds(10);

    const py::gil_scoped_release release;
    // One thread at a time per model.
    const std::lock_guard lock(mutex);
    const FitProgress progress([last = Clock::now()](double, const std::string&) mutable {
        if (Clock::now() - last >= lookEvery) {
            const py::gil_scoped_acquire acquire;
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
            last = Clock::now();
        }
        return true;
    });
    return work();
}

std::vector<int> offsetsUpTo(std::size_t count)
{
    std::vector<int> offsets(count);
    std::iota(offsets.begin(), offsets.end(), 0);
    return offsets;
}

/** A fitted model, or one that was read and predicts only. */
class Model
{
public:
    Model(std::shared_ptr<const PredictiveModel> model, std::size_t outputs)
        : model(std::move(model)), outputs(outputs)
    {}

    Model(Model&& other) noexcept : model(std::move(other.model)), outputs(other.outputs) {}

    static Model fit(const Array& x, const Array& y, const ModelSettings& settings,
                     const CaseDesign& design = {})
    {
        const Columns inputs(x);
        const Columns outputs(y);
        std::mutex unshared;
        return unlocked(unshared, [&] {
            std::shared_ptr<FittedModel> fitted =
                settings.fit(inputs.pointers, outputs.pointers, inputs.rowCount, design);
            const std::vector<int> all = offsetsUpTo(outputs.pointers.size());
            fitted->activateDependentVariables({all.begin(), all.end()});
            return Model(fitted, all.size());
        });
    }

    static py::tuple load(const std::string& json)
    {
        const ExportedModel exported = readExportedModel(json);
        Names inputs;
        Names outputs;
        for (const ExportedModel::Input& input : exported.inputs) {
            inputs.push_back(input.name);
        }
        for (const ExportedModel::Output& output : exported.outputs) {
            outputs.push_back(output.name);
        }
        const auto predictor = exported.predictor();
        return py::make_tuple(Model({predictor.get(), [predictor](auto*) {}}, outputs.size()),
                              exported.isKriging(), inputs, outputs);
    }

    bool hasCases() const { return dynamic_cast<const FittedModel*>(model.get()) != nullptr; }

    py::array_t<double> predict(const Array& x) const
    {
        const Columns points(x);
        py::array_t<double> values = emptyMatrix(points.rowCount, outputs);
        std::vector<double*> columns;
        for (std::size_t output = 0; output < outputs; ++output) {
            columns.push_back(values.mutable_data(0, output));
        }
        const std::vector<int> all = offsetsUpTo(outputs);
        unlocked(mutex, [&] {
            model->interpolateDependentValues(points.pointers, {all.begin(), all.end()}, columns,
                                              points.rowCount);
        });
        return values;
    }

    py::array_t<double> standardErrors(const Array& x, bool ofObservation) const
    {
        const Columns points(x);
        return matrixOf(points.rowCount, outputs, [&](int output) {
            return unlocked(mutex, [&] {
                return fitted().standardErrors(points.pointers, output,
                                               ofObservation ? FittedModel::ErrorKind::Observation
                                                             : FittedModel::ErrorKind::Mean,
                                               points.rowCount);
            });
        });
    }

    py::tuple intervals(const Array& x, double level) const
    {
        const Columns points(x);
        std::vector<PredictionIntervals> limits;
        for (const int output : offsetsUpTo(outputs)) {
            limits.push_back(unlocked(mutex, [&] {
                return fitted().predictionIntervals(points.pointers, output, level,
                                                    points.rowCount);
            }));
        }
        return py::make_tuple(
            matrixOf(points.rowCount, outputs, [&](int output) { return limits[output].lower; }),
            matrixOf(points.rowCount, outputs, [&](int output) { return limits[output].upper; }));
    }

    /** An object in JSON; cases are counted from 1, blocks are named by their numbers. */
    std::string report(int output, const Names& names) const
    {
        return unlocked(mutex, [&] { return reportOf(output, names).dump(); });
    }

    std::string equation(int output) const
    {
        return unlocked(mutex, [&] { return model->surfaceCoefficientInformation(output); });
    }

    /** Row, output, predicted, standard error. */
    py::array_t<double> leaveOneOut(int output) const
    {
        const auto all = unlocked(mutex, [&] { return fitted().leaveOneOutPredictions(output); });
        py::array_t<double> matrix = emptyMatrix(all.size(), 4);
        auto cells = matrix.mutable_unchecked<2>();
        for (std::size_t i = 0; i < all.size(); ++i) {
            const auto row = static_cast<py::ssize_t>(i);
            cells(row, 0) = static_cast<double>(all[i].row);
            cells(row, 1) = all[i].output;
            cells(row, 2) = all[i].predicted;
            cells(row, 3) = all[i].standardError;
        }
        return matrix;
    }

    py::bytes exported(const std::string& format, const Names& inputNames,
                       const Names& outputNames) const
    {
        const std::map<std::string, ExportFormat> formats = {{".txt", ExportFormat::Text},
                                                             {".json", ExportFormat::Json},
                                                             {".c", ExportFormat::C},
                                                             {".py", ExportFormat::Python},
                                                             {".xlsx", ExportFormat::Excel}};
        const auto found = formats.find(format);
        if (found == formats.end()) {
            throw SurrogateModelInterface::Error(
                "\"" + format +
                "\" is no format of models: a file ends in .json, .c, .py, .xlsx or .txt.");
        }
        return unlocked(mutex, [&] {
            std::vector<ExportedModel::Input> inputs;
            const PredictorDescription described = model->predictorDescription(0);
            for (std::size_t i = 0; i < described.inputs.size(); ++i) {
                inputs.push_back({inputNames.at(i), described.inputs[i].minimum,
                                  described.inputs[i].maximum, std::nullopt});
            }
            std::vector<ExportedModel::WantedOutput> wanted;
            for (const int offset : offsetsUpTo(outputs)) {
                wanted.push_back({outputNames.at(static_cast<std::size_t>(offset)), offset});
            }
            return exportModel(ExportedModel::of(*model, inputs, wanted), found->second);
        });
    }

private:
    FitJson::Json reportOf(int output, const Names& names) const
    {
        const ModelInterfaces interfaces(*model);
        const FitMetrics metrics = model->fitMetrics(output);
        const ModelledTransform modelled = interfaces.transform(output);
        auto statistics = interfaces.responseSurfaceStatistics(output);
        FitJson::Json json;
        json["metrics"] = FitJson::of(metrics, statistics ? &*statistics : nullptr);
        json["metrics"]["logLikelihood"] = metrics.logLikelihood;
        const Names notes = model->fitNotes(output, names);
        json["notes"] = notes;
        json["warnings"] = FitJson::Json::array();
        for (const std::string& warning : model->fitWarnings(output, names)) {
            if (std::find(notes.begin(), notes.end(), warning) == notes.end()) {
                json["warnings"].push_back(warning);
            }
        }
        json["transform"] = OutputTransforms::word(
            hasCases() ? modelled.transform : model->predictorDescription(output).transform);
        if (modelled.profile) {
            json["boxCox"] = FitJson::of(*modelled.profile);
        }
        if (const auto kriging = interfaces.krigingReport(output)) {
            json.update(FitJson::of(*kriging));
        }
        if (statistics) {
            for (BlockEffect& one : statistics->blockEffects) {
                one.name = std::to_string(one.block);
            }
            json.update(FitJson::of(*statistics, names));
        }
        if (hasCases()) {
            try {
                json["calibration"] = FitJson::of(fitted().calibrationReport(output));
            } catch (const SurrogateModelInterface::Error&) {
                // Without intervals there is nothing to report.
            }
        }
        return json;
    }

    const FittedModel& fitted() const
    {
        const auto* fitted = dynamic_cast<const FittedModel*>(model.get());
        if (fitted == nullptr) {
            throw SurrogateModelInterface::Error(
                "A model that was read from a file has no standard errors: fit it to its cases.");
        }
        return *fitted;
    }

    std::shared_ptr<const PredictiveModel> model;
    std::size_t outputs;
    mutable std::mutex mutex;
};

/** @param text nothing: what the program takes without a word on it. */
TransformSetting transformOf(const std::optional<std::string>& text, bool isKriging)
{
    if (!text) {
        return TransformSetting::Usual;
    }
    for (const TransformSetting setting :
         {TransformSetting::Automatic, TransformSetting::None, TransformSetting::SquareRoot,
          TransformSetting::Logarithm}) {
        if (*text == transformWord(setting)) {
            return setting;
        }
    }
    if (*text != transformWord(TransformSetting::BoxCox)) {
        throw SurrogateModelInterface::Error("\"" + *text +
                                             "\" is no transform: auto, none, sqrt, log" +
                                             (isKriging ? "." : ", boxcox."));
    }
    if (isKriging) {
        throw SurrogateModelInterface::Error(
            "Only response surfaces are transformed by Box and Cox: choose another transform.");
    }
    return TransformSetting::BoxCox;
}

void setTerms(ResponseSurfaceOptions& options, const std::string& text, const Names& inputs)
{
    options.terms = termsOfWord(text);
    if (options.terms == PolynomialTerms::Chosen) {
        options.formula = TermFormula(text, inputs).symbols();
    }
}

/** The values of a distribution text, ascending. */
py::array_t<double> distributionValues(const std::string& text)
{
    const SurrogateModelUserDist distribution(text);
    if (!distribution.isValid()) {
        throw py::value_error("The text \"" + text + "\" cannot be read. " +
                              distribution.refusal());
    }
    std::vector<double> values;
    distribution.get(values);
    return py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data());
}

template <class Option>
void set(Option& option, const std::optional<Option>& value)
{
    option = value.value_or(option);
}

} // namespace

PYBIND11_MODULE(_core, module)
{
    using py::literals::operator""_a;

    module.attr("__version__") = SURROGATE_VERSION;
    py::register_exception<SurrogateModelInterface::Error>(module, "ModelError", PyExc_ValueError);
    py::register_exception<ModelImportError>(module, "ModelFileError", PyExc_ValueError);
    module.def("set_thread_count", setThreadCount, "count"_a);
    module.def("distribution_values", distributionValues, "text"_a,
               "The values of a text like \"4 - 80 : 20, 42\", ascending.");

    py::class_<Model>(module, "Model")
        .def_property_readonly("has_cases", &Model::hasCases)
        .def("predict", &Model::predict, "x"_a)
        .def("standard_errors", &Model::standardErrors, "x"_a, "of_observation"_a)
        .def("intervals", &Model::intervals, "x"_a, "level"_a)
        .def("report", &Model::report, "output"_a, "names"_a)
        .def("equation", &Model::equation, "output"_a)
        .def("leave_one_out", &Model::leaveOneOut, "output"_a)
        .def("export", &Model::exported, "format"_a, "inputs"_a, "outputs"_a);
    module.def("load", &Model::load, "json"_a);

    module.def(
        "fit_kriging",
        [](const Array& x, const Array& y, const std::optional<std::string>& transform,
           const std::optional<int>& trendOrder, const std::optional<double>& nugget,
           const std::optional<std::vector<double>>& correlationLengths) {
            ModelSettings settings;
            settings.isKriging = true;
            settings.transform = transformOf(transform, true);
            set(settings.kriging.trendOrder, trendOrder);
            set(settings.kriging.nugget, nugget);
            set(settings.kriging.correlationLengths, correlationLengths);
            return Model::fit(x, y, settings);
        },
        "x"_a, "y"_a, "transform"_a, "trend_order"_a, "nugget"_a, "correlation_lengths"_a);
    module.def(
        "fit_response_surface",
        [](const Array& x, const Array& y, const std::optional<std::string>& transform,
           const std::optional<std::string>& terms, bool selectTerms, const Names& names,
           std::vector<double> weights, std::vector<std::size_t> blocks) {
            ModelSettings settings;
            settings.transform = transformOf(transform, false);
            if (terms) {
                setTerms(settings.responseSurface, *terms, names);
            }
            if (selectTerms) {
                settings.responseSurface.selection =
                    ResponseSurfaceOptions::Selection::BackwardAicc;
            }
            return Model::fit(x, y, settings, {std::move(weights), std::move(blocks)});
        },
        "x"_a, "y"_a, "transform"_a, "terms"_a, "select_terms"_a, "names"_a, "weights"_a,
        "blocks"_a);
}
