#pragma once

#include "base/text.h"

#include <optional>
#include <string_view>

namespace pulsara {

// Path helpers on UTF-16 paths with the native separator.
constexpr char16_t kPathSeparator = u'/';

// True when a regular file at the path can be opened for reading.
bool fileExists(std::u16string_view path);

// The text after the last "." of the last component; nullopt when that component has no "."
// but an earlier one has a separator after its "."; the whole path when neither occurs.
std::optional<std::u16string_view> pathExtension(std::u16string_view path);

// The text after the last separator, or the whole path.
std::u16string_view pathFileName(std::u16string_view path);

// A stored name is absolute when it starts with a separator or has a drive colon second.
bool isAbsolutePath(std::u16string_view path);

// out = folder + separator + name, or just name when the folder is empty or the name absolute.
void joinPath(PathString& out, std::u16string_view folder, std::u16string_view name);

// out = path cut at its last separator (the path itself when there is none).
void parentFolder(PathString& out, std::u16string_view path);

// Writes into `out` the path of `target` relative to the folder `base` and returns the number of
// "../" steps it needed; -1 (out = target) when the two share no first character, -2 (out
// untouched) when the target is empty. The common prefix is taken unit by unit, not component
// by component, so ".../smp" against ".../songs" diverges inside the name.
int relativePath(PathString& out, std::u16string_view base, std::u16string_view target);

// The component that follows the first separator after the first unit: "/a/b/c" and "a/b/c" both
// give "b". An empty path, or one without such a separator, gives an empty output.
void firstComponent(PathString& out, std::u16string_view path);

// The native form of a path for the C library (UTF-8).
std::string nativePath(std::u16string_view path);

} // namespace pulsara
