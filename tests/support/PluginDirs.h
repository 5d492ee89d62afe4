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
inline std::string pluginDir()
{
    return KOREL2D_PLUGIN_DIR;
}

inline std::string examplePlugin()
{
    return pluginDir() + "/libKrdExample.so";
}

inline std::string variant(const std::string& dir, const std::string& file)
{
    return pluginDir() + "/variants/" + dir + "/" + file;
}
#endif

class PluginDirs {
public:
    enum class Home {
        Fresh,     // KOREL_HOME is an empty directory of the test's own, with bin/
        Unset,     // no KOREL_HOME: only "." is searched; the fresh directory is still made
        PluginDir, // KOREL_HOME is the build's plug-in directory (needs KOREL2D_PLUGIN_DIR)
    };

    explicit PluginDirs(Home mode = Home::Fresh)
    {
        namespace fs = std::filesystem;
        std::error_code error;
        oldCwd_ = fs::current_path(error).string();
        if (const char* old = getenv("KOREL_HOME"))
            oldHome_ = old;
        workDir_ = makeTemporary("k2dWork");
        freshHome_ = makeTemporary("k2dHome");
        fs::create_directory(freshHome_ + "/bin", error);
        if (chdir(workDir_.c_str()) != 0)
            ADD_FAILURE() << "can't enter " << workDir_;
        switch (mode) {
        case Home::Fresh: setHome(freshHome_); break;
        case Home::Unset: unsetenv("KOREL_HOME"); break;
        case Home::PluginDir:
#ifdef KOREL2D_PLUGIN_DIR
            setHome(pluginDir());
#else
            ADD_FAILURE() << "KOREL2D_PLUGIN_DIR is not defined for this suite";
#endif
            break;
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

    const std::string& workDir() const { return workDir_; }
    // The directory of the test's own; KOREL_HOME names it only in mode Fresh.
    const std::string& freshHome() const { return freshHome_; }
    // What KOREL_HOME holds now, empty when it is unset.
    std::string home() const
    {
        const char* home = getenv("KOREL_HOME");
        return home ? home : "";
    }

    // Each copies a file under its own name or under `as`, and returns the copy's path.
    std::string copyIntoWorkDir(const std::string& path, const std::string& as = "")
    {
        return copy(path, workDir_, as);
    }
    std::string copyIntoHomeBin(const std::string& path, const std::string& as = "")
    {
        return copy(path, freshHome_ + "/bin", as);
    }
    std::string copyIntoHome(const std::string& path, const std::string& as = "")
    {
        return copy(path, freshHome_, as);
    }

private:
    static std::string makeTemporary(const char* stem)
    {
        std::error_code error;
        std::string pattern = (std::filesystem::temp_directory_path(error) / stem).string() + "XXXXXX";
        if (!mkdtemp(pattern.data())) {
            ADD_FAILURE() << "can't make a directory like " << pattern;
            return "";
        }
        return pattern;
    }

    static void setHome(const std::string& directory) { setenv("KOREL_HOME", directory.c_str(), 1); }

    static std::string copy(const std::string& path, const std::string& directory, const std::string& as)
    {
        namespace fs = std::filesystem;
        fs::path target = fs::path(directory) / (as.empty() ? fs::path(path).filename() : fs::path(as));
        std::error_code error;
        fs::copy_file(path, target, fs::copy_options::overwrite_existing, error);
        if (error)
            ADD_FAILURE() << "can't copy " << path << " to " << target << ": " << error.message();
        return target.string();
    }

    std::string oldCwd_;
    std::optional<std::string> oldHome_;
    std::string workDir_;
    std::string freshHome_;
};

} // namespace k2dtest
