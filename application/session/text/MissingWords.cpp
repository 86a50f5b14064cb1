#include "session/text/MissingWords.h"

#include "session/text/AsciiText.h"

#include <algorithm>

MissingWords::MissingWords(const std::string& list) : list(list)
{
    for (const std::string_view word : partsBetweenCommas(list)) {
        if (!word.empty()) {
            words.emplace_back(word);
            const CellValue value = CellValue::read(word, false);
            if (value.kind == CellValue::Number) {
                numbers.push_back(value.number);
            }
        }
    }
}

bool MissingWords::contains(std::string_view text, const CellValue& value) const
{
    if (value.kind == CellValue::Number &&
        std::find(numbers.begin(), numbers.end(), value.number) != numbers.end()) {
        return true;
    }
    return std::find(words.begin(), words.end(), trimmedText(text)) != words.end();
}
