// The shipped sample views, and a view loaded straight from a file by the reader alone.
#pragma once

#include "KorelEdit.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace k2dtest {

// Every examples/*.k2d, sorted by name.
inline std::vector<std::string> samplePaths()
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(KOREL2D_EXAMPLES_DIR))
        if (entry.path().extension() == ".k2d")
            paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

// A view as the reader makes it from a file, before sources are matched to libraries: cheap
// enough to load tens of thousands of times. The binary reader unless another is given.
struct FileView {
    using Reader = int (*)(const char*, ELEMENT_STRUCT**, DD_DATA_TYPE_STRUCT**, VIEW_STRUCT*);
    VIEW_STRUCT view = {};
    const int result;
    explicit FileView(const std::string& path, Reader read = loadFile)
        : result(read(path.c_str(), &view.elements, &view.dataTypes, &view))
    {
    }
    ~FileView()
    {
        elementDeleteAll(&view.elements);
        while (view.dataTypes)
            delDataType(&view.dataTypes, view.dataTypes, 0);
    }
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;
};

} // namespace k2dtest
