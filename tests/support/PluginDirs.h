// The places where a view looks for plug-ins, set up for the length of a test: a fresh working
// directory (".") and a fresh KOREL_HOME with its bin/, holding exactly the plug-ins the test
// copies there. The old working directory and KOREL_HOME come back at the end.
// Only the suites built with KOREL2D_PLUGIN_DIR (data, actions) include this.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

namespace k2dtest {

// The built sample plug-in lies directly in KOREL2D_PLUGIN_DIR; each variant alone in
// variants/<dir>/, so that copying one brings no other along.
inline std::string examplePlugin() { return KOREL2D_PLUGIN_DIR "/libKrdExample.so"; }

inline std::string variant(const std::string& dir, const std::string& file)
{
    return KOREL2D_PLUGIN_DIR "/variants/" + dir + "/" + file;
}

class PluginDirs {
public:
    // Fresh: KOREL_HOME is an empty directory of the test's own, with bin/. Unset: no KOREL_HOME,
    // only "." is searched; the fresh directory is still made. PluginDir: KOREL_HOME is the
    // build's plug-in directory.
    enum class Home { Fresh, Unset, PluginDir };
    // Where copy() puts a plug-in, in the order of the search.
    enum class Place { WorkDir, HomeBin, Home };

    explicit PluginDirs(Home mode = Home::Fresh) : oldCwd_(std::filesystem::current_path())
    {
        if (const char* old = getenv("KOREL_HOME"))
            oldHome_ = old;
        std::filesystem::create_directory(freshHome_ + "/bin");
        std::filesystem::current_path(workDir_);
        if (mode == Home::Unset)
            unsetenv("KOREL_HOME");
        else
            setenv("KOREL_HOME", mode == Home::Fresh ? freshHome_.c_str() : KOREL2D_PLUGIN_DIR, 1);
    }

    ~PluginDirs()
    {
        std::error_code error; // a destructor must not throw
        std::filesystem::current_path(oldCwd_, error);
        if (oldHome_)
            setenv("KOREL_HOME", oldHome_->c_str(), 1);
        else
            unsetenv("KOREL_HOME");
        std::filesystem::remove_all(workDir_, error);
        std::filesystem::remove_all(freshHome_, error);
    }

    // Copies a file under its own name or under `as`; returns the path as the search builds it.
    // A failure throws, and the test that asked fails with it.
    std::string copy(Place place, const std::string& path, const std::string& as = "")
    {
        namespace fs = std::filesystem;
        const fs::path name = as.empty() ? fs::path(path).filename() : fs::path(as);
        const std::string directory = place == Place::WorkDir ? workDir_
                                      : place == Place::HomeBin ? freshHome_ + "/bin" : freshHome_;
        fs::copy_file(path, directory / name, fs::copy_options::overwrite_existing);
        return place == Place::WorkDir ? "./" + name.string() : (directory / name).string();
    }

private:
    static std::string makeTemporary(const char* stem)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / stem).string() + "XXXXXX";
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("can't make a directory like " + pattern);
        return pattern;
    }

    std::filesystem::path oldCwd_;
    std::optional<std::string> oldHome_;
    std::string workDir_ = makeTemporary("k2dWork");
    std::string freshHome_ = makeTemporary("k2dHome");
};

} // namespace k2dtest
