// Reading a case file of a million cases, and writing as many predictions beside their points.
#include "TestFunctions.h"

#include <session/cases/CaseFileReader.h>
#include <session/files/OutputFile.h>
#include <session/files/OutputTable.h>
#include <session/text/CellTexts.h>
#include <session/text/DecimalText.h>

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::size_t columnCount = 10;
const std::size_t caseCount = 1000000;

enum Content
{
    Plain,        ///< "0.1234567", ten bytes a cell
    AllDigits,    ///< seventeen digits
    DecimalComma, ///< "0,1234567" between semicolons
    WindowsLines, ///< lines end with CRLF
    Labelled      ///< the first column is a quoted name
};

/** A case file in the temporary folder, gone at the end of the program. */
class CaseFile
{
public:
    explicit CaseFile(Content content)
        : path((std::filesystem::temp_directory_path() /
                ("surrogate-bench-" + std::to_string(getpid()) + ".csv"))
                   .string())
    {
        std::ofstream out(path, std::ios::binary);
        const char separator = content == DecimalComma ? ';' : ',';
        const char* const lineEnd = content == WindowsLines ? "\r\n" : "\n";
        const char* const format = content == AllDigits ? "%.17g" : "%.7f";
        UniformNumbers numbers(1);
        std::string line = content == Labelled ? "\"name\"" : "v0";
        for (std::size_t c = 1; c < columnCount; ++c) {
            line += separator + ("v" + std::to_string(c));
        }
        out << line << lineEnd;
        for (std::size_t row = 0; row < caseCount; ++row) {
            line.clear();
            for (std::size_t c = 0; c < columnCount; ++c) {
                std::array<char, 32> text;
                std::snprintf(text.data(), text.size(), format, numbers.next());
                if (content == DecimalComma) {
                    text[1] = ',';
                }
                line += c == 0 ? std::string() : std::string(1, separator);
                line += content == Labelled && c == 0 ? "\"case " + std::to_string(row) + '"'
                                                      : text.data();
            }
            out << line << lineEnd;
        }
        out.close();
        size = static_cast<std::int64_t>(std::filesystem::file_size(path));
    }

    ~CaseFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    CaseFile(const CaseFile&) = delete;
    CaseFile& operator=(const CaseFile&) = delete;

    std::string path;
    std::int64_t size = 0;
};

/** The most memory that reading takes, as a multiple of the numbers; in a process of its own. */
template <class Read>
double memoryOf(const Read& read)
{
    int answer[2];
    if (pipe(answer) != 0) {
        return 0;
    }
    const pid_t child = fork();
    const auto held = [] {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return 1024.0 * static_cast<double>(usage.ru_maxrss);
    };
    if (child == 0) {
        const double before = held();
        read();
        const double grown = held() - before;
        _exit(write(answer[1], &grown, sizeof grown) == sizeof grown ? 0 : 1);
    }
    close(answer[1]);
    double grown = 0;
    if (::read(answer[0], &grown, sizeof grown) != sizeof grown) {
        grown = 0;
    }
    close(answer[0]);
    waitpid(child, nullptr, 0);
    return grown / static_cast<double>(columnCount * caseCount * sizeof(double));
}

/** The floor: nothing but numbers and single separators, straight from mapped pages. */
void readBareNumbers(benchmark::State& state)
{
    const CaseFile file(static_cast<Content>(state.range(0)));
    for (auto _ : state) {
        const int descriptor = open(file.path.c_str(), O_RDONLY);
        const auto length = static_cast<std::size_t>(file.size);
        void* const pages = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, descriptor, 0);
        const char* const begin = static_cast<const char*>(pages);
        const char* const end = begin + length;
        std::vector<std::vector<double>> columns(columnCount);
        for (std::vector<double>& column : columns) {
            column.reserve(caseCount);
        }
        const char* at = static_cast<const char*>(std::memchr(begin, '\n', length)) + 1;
        while (at < end) {
            for (std::vector<double>& column : columns) {
                double number = 0;
                at = std::from_chars(at, end, number).ptr + 1;
                column.push_back(number);
            }
        }
        benchmark::DoNotOptimize(columns.data());
        munmap(pages, length);
        close(descriptor);
    }
    state.SetBytesProcessed(state.iterations() * file.size);
}
BENCHMARK(readBareNumbers)
    ->ArgName("content")
    ->Arg(Plain)
    ->Arg(AllDigits)
    ->Unit(benchmark::kMillisecond);

void readCaseFile(benchmark::State& state)
{
    const CaseFile file(static_cast<Content>(state.range(0)));
    const auto read = [&] {
        const CaseTable table = CaseFileReader::read(file.path, {});
        benchmark::DoNotOptimize(table.columns.data());
    };
    state.counters["memory/numbers"] = memoryOf(read);
    for (auto _ : state) {
        read();
    }
    state.SetBytesProcessed(state.iterations() * file.size);
}
BENCHMARK(readCaseFile)
    ->ArgName("content")
    ->Arg(Plain)
    ->Arg(AllDigits)
    ->Arg(DecimalComma)
    ->Arg(WindowsLines)
    ->Arg(Labelled)
    ->Unit(benchmark::kMillisecond);

/** What a pipe delivers is kept until the end, since it cannot be read again. */
void readCasesFromPipe(benchmark::State& state)
{
    const CaseFile file(Plain);
    const auto read = [&] {
        int ends[2];
        if (pipe(ends) != 0) {
            std::abort();
        }
        const pid_t writer = fork();
        if (writer == 0) {
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            close(ends[1]);
            execlp("cat", "cat", file.path.c_str(), static_cast<char*>(nullptr));
            _exit(1);
        }
        close(ends[1]);
        const CaseTable table = CaseFileReader::read("/dev/fd/" + std::to_string(ends[0]), {});
        benchmark::DoNotOptimize(table.columns.data());
        close(ends[0]);
        waitpid(writer, nullptr, 0);
    };
    state.counters["memory/numbers"] = memoryOf(read);
    for (auto _ : state) {
        read();
    }
    state.SetBytesProcessed(state.iterations() * file.size);
}
BENCHMARK(readCasesFromPipe)->Unit(benchmark::kMillisecond);

/** As predict reads its points: with the texts of all cells. */
void readPoints(benchmark::State& state)
{
    const CaseFile file(Plain);
    CaseFileReader::Options options;
    options.keepCells = true;
    const auto read = [&] {
        const CaseTable table = CaseFileReader::read(file.path, options);
        benchmark::DoNotOptimize(table.columns.data());
    };
    state.counters["memory/numbers"] = memoryOf(read);
    for (auto _ : state) {
        read();
    }
    state.SetBytesProcessed(state.iterations() * file.size);
}
BENCHMARK(readPoints)->Unit(benchmark::kMillisecond);

/** The floor of writing: the shortest texts of the same numbers, one after the other. */
void formatBareNumbers(benchmark::State& state)
{
    const std::vector<std::vector<double>> columns = uniformColumns(columnCount, caseCount);
    std::int64_t bytes = 0;
    std::vector<char> text(64 * columnCount);
    for (auto _ : state) {
        bytes = 0;
        for (std::size_t row = 0; row < caseCount; ++row) {
            char* at = text.data();
            for (const std::vector<double>& column : columns) {
                at = std::to_chars(at, at + 32, column[row]).ptr;
                *at++ = ',';
            }
            benchmark::DoNotOptimize(text.data());
            bytes += at - text.data();
        }
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(formatBareNumbers)->Unit(benchmark::kMillisecond);

/** To a device that takes everything: disks differ. */
void writeNumbers(benchmark::State& state)
{
    const std::vector<std::vector<double>> columns = uniformColumns(columnCount, caseCount);
    OutputTable table;
    table.rows = caseCount;
    std::int64_t bytes = 0;
    for (std::size_t c = 0; c < columnCount; ++c) {
        table.columns.push_back({"v" + std::to_string(c), columns[c].data(), nullptr});
        for (const double number : columns[c]) {
            bytes += static_cast<std::int64_t>(numberText(number).size()) + 1;
        }
    }
    for (auto _ : state) {
        OutputFile out("/dev/null");
        writeCsv(table, out);
        out.commit();
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(writeNumbers)->Unit(benchmark::kMillisecond);

/** As predict writes: the points as they were read and one column of results. */
void writePredictions(benchmark::State& state)
{
    const CaseFile file(Plain);
    CaseFileReader::Options options;
    options.keepCells = true;
    const CaseTable points = CaseFileReader::read(file.path, options);
    const std::vector<double> results = uniformColumns(1, caseCount).front();
    OutputTable table;
    table.rows = points.cases;
    for (const CaseColumn& column : points.columns) {
        table.columns.push_back({column.name, column.numbers.data(), &column.cells});
    }
    table.columns.push_back({"y predicted", results.data(), nullptr});
    for (auto _ : state) {
        OutputFile out("/dev/null");
        writeCsv(table, out);
        out.commit();
    }
    state.SetBytesProcessed(state.iterations() * file.size);
}
BENCHMARK(writePredictions)->Unit(benchmark::kMillisecond);

} // namespace
