#include "GUI/FilePath.h"

namespace pulsara {

std::vector<FileFilter> parseFilterList(const char16_t* list)
{
    std::vector<FileFilter> filters;
    if (!list)
        return filters;
    const char16_t* cursor = list;
    while (*cursor) {
        std::u16string description(cursor);
        cursor += description.size() + 1;
        if (!*cursor)
            break;
        std::u16string pattern(cursor);
        cursor += pattern.size() + 1;
        filters.push_back({ std::move(description), std::move(pattern) });
    }
    return filters;
}

} // namespace pulsara
