#include "session/CsvSplitter.h"

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
} // namespace

class CsvSplitter::Impl
{
public:
    Impl(char separator, Sink& receiver) : sink(receiver)
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
    }

    void rethrow()
    {
        if (pending) {
            std::rethrow_exception(pending);
        }
    }

    Sink& sink;
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
    const std::size_t taken =
        csv_parse(&impl->parser, bytes, count, &Impl::onCell, &Impl::onLineEnd, impl.get());
    impl->rethrow();
    if (taken != count) {
        throw std::bad_alloc();
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
