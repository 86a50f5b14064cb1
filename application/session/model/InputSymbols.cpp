#include "session/model/InputSymbols.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>

namespace {
bool isWordCharacter(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}
} // namespace

std::string withInputNames(const std::string& sentence, const std::vector<std::string>& inputs)
{
    std::string result;
    std::size_t productAt = std::string::npos; // where a symbol would be the second of a product
    for (std::size_t i = 0; i < sentence.size();) {
        const bool beginsWord = i == 0 || !isWordCharacter(sentence[i - 1]);
        std::size_t symbol = 0;
        std::size_t end = i + 1;
        if (beginsWord && sentence[i] == 'V') {
            const char* const last = sentence.data() + sentence.size();
            const auto read = std::from_chars(sentence.data() + i + 1, last, symbol);
            end = static_cast<std::size_t>(read.ptr - sentence.data());
        }
        const bool endsWord = end == sentence.size() || !isWordCharacter(sentence[end]);
        if (symbol > 0 && symbol <= inputs.size() && endsWord) {
            result += (i == productAt ? "* \"" : "\"") + inputs[symbol - 1] + '"';
            i = end;
            productAt = sentence.compare(end, 1, " ") == 0 ? end + 1 : std::string::npos;
        } else {
            result += sentence[i++];
        }
    }
    return result;
}
