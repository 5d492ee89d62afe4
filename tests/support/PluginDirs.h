// The places where a view looks for plug-ins, set up for the length of a test: a fresh working
// directory (".") and a fresh KOREL_HOME with its bin/, holding exactly the plug-ins the test
// copies there. The old working directory and KOREL_HOME come back at the end.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace k2dtest {

#ifdef KOREL2D_PLUGIN_DIR
// The built sample plug-in lies directly in KOREL2D_PLUGIN_DIR; each variant alone in
// variants/<dir>/, so that copying one brings no other along.
inline std::string examplePlugin()
{
    return KOREL2D_PLUGIN_DIR "/libKrdExample.so";
}

inline std::string variant(const std::string& dir, const std::string& file)
{
    return KOREL2D_PLUGIN_DIR "/variants/" + dir + "/" + file;
}
#endif

class PluginDirs {
public:
    enum class Home {
        Fresh,     // KOREL_HOME is an empty directory of the test's own, with bin/
        Unset,     // no KOREL_HOME: only "." is searched; the fresh directory is still made
        PluginDir, // KOREL_HOME is the build's plug-in directory (needs KOREL2D_PLUGIN_DIR)
    };
    // Where copy() puts a plug-in, in the order of the search.
    enum class Place { WorkDir, HomeBin, Home };

    explicit PluginDirs(Home mode = Home::Fresh)
    {
        std::error_code error;
        oldCwd_ = std::filesystem::current_path(error).string();
        if (const char* old = getenv("KOREL_HOME"))
            oldHome_ = old;
        workDir_ = makeTemporary("k2dWork");
        freshHome_ = makeTemporary("k2dHome");
        std::filesystem::create_directory(freshHome_ + "/bin", error);
        if (chdir(workDir_.c_str()) != 0)
            ADD_FAILURE() << "can't enter " << workDir_;
        switch (mode) {
        case Home::Fresh: setenv("KOREL_HOME", freshHome_.c_str(), 1); break;
        case Home::Unset: unsetenv("KOREL_HOME"); break;
        case Home::PluginDir:
#ifdef KOREL2D_PLUGIN_DIR
            setenv("KOREL_HOME", KOREL2D_PLUGIN_DIR, 1);
#else
            ADD_FAILURE() << "KOREL2D_PLUGIN_DIR is not defined for this suite";
#endif
        }
    }

    ~PluginDirs()
    {
        if (!oldCwd_.empty() && chdir(oldCwd_.c_str()) != 0)
            ADD_FAILURE() << "can't go back to " << oldCwd_;
        if (oldHome_)
            setenv("KOREL_HOME", oldHome_->c_str(), 1);
        else
            unsetenv("KOREL_HOME");
        std::error_code error;
        std::filesystem::remove_all(workDir_, error);
        std::filesystem::remove_all(freshHome_, error);
    }

    PluginDirs(const PluginDirs&) = delete;
    PluginDirs& operator=(const PluginDirs&) = delete;

    // Copies a file under its own name or under `as`; returns the path as the search builds it.
    std::string copy(Place place, const std::string& path, const std::string& as = "")
    {
        namespace fs = std::filesystem;
        const fs::path name = as.empty() ? fs::path(path).filename() : fs::path(as);
        const std::string directory = place == Place::WorkDir ? workDir_
                                      : place == Place::HomeBin ? freshHome_ + "/bin" : freshHome_;
        std::error_code error;
        fs::copy_file(path, directory / name, fs::copy_options::overwrite_existing, error);
        if (error)
            ADD_FAILURE() << "can't copy " << path << " to " << directory << ": " << error.message();
        return place == Place::WorkDir ? "./" + name.string() : (directory / name).string();
    }

private:
    static std::string makeTemporary(const char* stem)
    {
        std::error_code error;
        std::string pattern = (std::filesystem::temp_directory_path(error) / stem).string() + "XXXXXX";
        if (!mkdtemp(pattern.data()))
            ADD_FAILURE() << "can't make a directory like " << pattern;
        return pattern;
    }

    std::string oldCwd_;
    std::optional<std::string> oldHome_;
    std::string workDir_;
    std::string freshHome_;
};

} // namespace k2dtest
