#include <zel/platform/FileFormat.h>

#include <algorithm>

namespace zel {

bool FileFormat::HasEnding(const std::string& ending) const {
    return std::find(endings.begin(), endings.end(), ending) != endings.end();
}

std::string EndingOf(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || path.find('/', dot) != std::string::npos) return {};
    std::string ending = path.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return ending;
}

}  // namespace zel
