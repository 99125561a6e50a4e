#pragma once

#include "base/text.h"

#include <cstdint>
#include <string>
#include <vector>

class QWidget;

namespace pulsara {

// A path chosen through the file dialogs, with what those dialogs need: the filter list, the
// filter the user picked last and the window that owns the dialogs.
class FilePath : public PathString {
public:
    using PathString::PathString;

    // Description/pattern pairs, each text ended by a zero and the list by a second zero:
    // u"Pulsara song files\0*.kqu\0\0". Not owned.
    const char16_t* filter = nullptr;
    // The filter chosen last, counted from 1 as the dialogs report it; 0 before any choice.
    uint32_t filterIndex = 0;
    QWidget* owner = nullptr;
};

// One entry of a filter list.
struct FileFilter {
    std::u16string description;
    std::u16string pattern;
};

// Splits a double-zero-terminated list into its pairs; a description without a pattern ends it.
std::vector<FileFilter> parseFilterList(const char16_t* list);

} // namespace pulsara
