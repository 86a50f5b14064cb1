#include "session/cases/CsvSplitter.h"

#include "session/cases/PlainCells.h"

#include <csv.h>

#include <cstring>
#include <exception>
#include <new>

namespace {
/** Cells are short; one that is longer grows the buffer in steps of this many bytes. */
constexpr std::size_t cellBufferStep = 4096;

std::size_t lineEndsIn(std::string_view text)
{
    if (std::memchr(text.data(), '\n', text.size()) == nullptr) {
        return 0;
    }
    std::size_t lines = 0;
    for (const char character : text) {
        lines += character == '\n' ? 1 : 0;
    }
    return lines;
}

/** Where a character comes next in a block; each byte is looked at once. */
class CharacterFinder
{
public:
    CharacterFinder(char wanted, const char* begin, const char* end)
        : character(wanted), blockEnd(end), found(begin)
    {
        find(begin);
    }

    /** @param begin not before that of the last call. */
    bool isBetween(const char* begin, const char* end)
    {
        if (found < begin) {
            find(begin);
        }
        return found < end;
    }

private:
    void find(const char* begin)
    {
        const void* const next =
            std::memchr(begin, character, static_cast<std::size_t>(blockEnd - begin));
        found = next == nullptr ? blockEnd : static_cast<const char*>(next);
    }

    char character;
    const char* blockEnd;
    const char* found;
};

/** What is left to be read of a block. */
struct Block
{
    Block(const char* bytes, std::size_t count)
        : begin(bytes), end(bytes + count), quotes('"', begin, end), returns('\r', begin, end)
    {}

    /** The end of the first line, before its LF; null if the line goes on in the next block. */
    const char* lineEnd() const
    {
        return static_cast<const char*>(
            std::memchr(begin, '\n', static_cast<std::size_t>(end - begin)));
    }

    const char* begin;
    const char* end;
    CharacterFinder quotes;
    CharacterFinder returns;
};
} // namespace

void CsvSplitter::Sink::plainRecord(std::string_view text, char separator, std::size_t line)
{
    for (PlainCells cells(text, separator); cells;) {
        cell(cells.next(), line);
    }
    endRecord(line);
}

class CsvSplitter::Impl
{
public:
    Impl(char cellSeparator, Sink& receiver)
        : sink(receiver), separator(cellSeparator),
          splitsLines(separator != '"' && separator != '\r' && separator != '\n')
    {
        // Line ends are reported one by one, those of empty lines too: they are what the lines
        // are counted by.
        if (csv_init(&parser, CSV_REPALL_NL) != 0) {
            throw std::bad_alloc();
        }
        csv_set_delim(&parser, static_cast<unsigned char>(separator));
        csv_set_blk_size(&parser, cellBufferStep);
    }

    ~Impl() { csv_free(&parser); }

    static void onCell(void* text, std::size_t size, void* self)
    {
        static_cast<Impl*>(self)->guarded([&](Impl& impl) {
            // An empty cell may come as a null pointer.
            impl.takeCell(size == 0 ? std::string_view()
                                    : std::string_view(static_cast<const char*>(text), size));
        });
    }

    static void onLineEnd(int character, void* self)
    {
        static_cast<Impl*>(self)->guarded([&](Impl& impl) { impl.takeLineEnd(character); });
    }

    /** An exception must not cross the C library: it waits until that has returned. */
    template <class Action>
    void guarded(Action action)
    {
        if (pending) {
            return;
        }
        try {
            action(*this);
        } catch (...) {
            pending = std::current_exception();
        }
    }

    void takeCell(std::string_view text)
    {
        if (!inRecord) {
            inRecord = true;
            recordLine = line;
        }
        afterCarriageReturn = false;
        sink.cell(text, recordLine);
        line += text.empty() ? 0 : lineEndsIn(text);
    }

    void takeLineEnd(int character)
    {
        if (inRecord) {
            inRecord = false;
            sink.endRecord(recordLine);
        }
        const bool secondOfPair = character == CSV_LF && afterCarriageReturn;
        line += secondOfPair ? 0 : 1;
        afterCarriageReturn = character == CSV_CR;
        recordLine = line;
        isAtLineStart = true;
    }

    /** Splits the whole lines at the beginning of the block that are plain. */
    void takePlainLines(Block& block)
    {
        while (block.begin != block.end) {
            const char* const lineEnd = block.lineEnd();
            if (lineEnd == nullptr) {
                return;
            }
            const bool isPair = lineEnd != block.begin && lineEnd[-1] == '\r';
            const char* const textEnd = lineEnd - (isPair ? 1 : 0);
            const std::string_view text(block.begin,
                                        static_cast<std::size_t>(textEnd - block.begin));
            const bool isPlain = !block.returns.isBetween(block.begin, textEnd) &&
                                 (!block.quotes.isBetween(block.begin, textEnd) ||
                                  PlainCells(text, separator).isPlain());
            if (!isPlain) {
                return;
            }
            takePlainLine(text);
            block.begin = lineEnd + 1;
        }
    }

    /** The line's end counts by itself: what is before the line ended with LF, if with anything. */
    void takePlainLine(std::string_view text)
    {
        PlainCells cells(text, separator);
        if (cells.begin() != cells.recordEnd()) {
            sink.plainRecord(text, separator, line);
        }
        ++line;
        recordLine = line;
    }

    /** Has libcsv read one line, or what the block has of it. */
    void takeLine(Block& block)
    {
        const char* const lineEnd = block.lineEnd();
        const char* const textEnd = lineEnd == nullptr ? block.end : lineEnd;
        feed(block.begin, textEnd);
        block.begin = textEnd;
        isAtLineStart = false;
        if (lineEnd != nullptr) {
            // Apart from the text: only what comes of this byte tells whether it ends the record
            // or is a character of a quoted cell.
            feed(lineEnd, lineEnd + 1);
            block.begin = lineEnd + 1;
        }
    }

    void feed(const char* begin, const char* end)
    {
        const auto count = static_cast<std::size_t>(end - begin);
        const std::size_t taken = csv_parse(&parser, begin, count, &onCell, &onLineEnd, this);
        rethrow();
        if (taken != count) {
            throw std::bad_alloc();
        }
    }

    void rethrow()
    {
        if (pending) {
            std::rethrow_exception(pending);
        }
    }

    Sink& sink;
    char separator;
    bool splitsLines;          ///< whether lines are what they look like
    bool isAtLineStart = true; ///< whether libcsv has nothing that it has not handed on
    csv_parser parser = {};
    std::size_t line = 1;
    std::size_t recordLine = 1;
    bool inRecord = false;
    bool afterCarriageReturn = false;
    std::exception_ptr pending;
};

CsvSplitter::CsvSplitter(char separator, Sink& sink) : impl(std::make_unique<Impl>(separator, sink))
{}

CsvSplitter::~CsvSplitter() = default;

void CsvSplitter::parse(const char* bytes, std::size_t count)
{
    if (count == 0) {
        return;
    }
    Block block(bytes, count);
    while (block.begin != block.end) {
        if (impl->isAtLineStart && impl->splitsLines) {
            impl->takePlainLines(block);
        }
        if (block.begin != block.end) {
            impl->takeLine(block);
        }
    }
}

bool CsvSplitter::finish()
{
    // Strictness is wanted for the one thing that only the end can tell, the missing quote.
    csv_set_opts(&impl->parser, CSV_REPALL_NL | CSV_STRICT | CSV_STRICT_FINI);
    const bool closed = csv_fini(&impl->parser, &Impl::onCell, &Impl::onLineEnd, impl.get()) == 0;
    impl->rethrow();
    return closed;
}

std::size_t CsvSplitter::recordLine() const
{
    return impl->recordLine;
}
