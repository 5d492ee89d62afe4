#include "base/base.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>
#include <string>
#include <thread>
#include <dlfcn.h>
#include <unistd.h>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// A scratch directory with two files, removed again at the end.
class ScratchDir {
public:
    ScratchDir()
    {
        char pattern[] = "/tmp/korel2d-dir-XXXXXX";
        path_ = mkdtemp(pattern);
        for (const std::string& name : names())
            fclose(fopen((path_ + "/" + name).c_str(), "w"));
    }
    ~ScratchDir()
    {
        for (const std::string& name : names())
            unlink((path_ + "/" + name).c_str());
        rmdir(path_.c_str());
    }
    static std::set<std::string> names() { return {"alpha.so", std::string(255, 'n')}; }
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

TEST(Platform, TimeOfDayInSeconds)
{
    const double before = apiGetTime();
    EXPECT_NEAR(before, static_cast<double>(time(nullptr)), 2.0);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const double elapsed = apiGetTime() - before;
    // Whole seconds alone would give 0 or 1 here.
    EXPECT_GE(elapsed, 0.019);
    EXPECT_LT(elapsed, 0.9);
}

TEST(Platform, ReadsEveryEntryThenStopsWithoutTouchingTheBuffer)
{
    ScratchDir dir;
    void* handle = apiOpenDir(dir.path().c_str());
    ASSERT_NE(handle, nullptr);
    std::set<std::string> seen;
    char buffer[256];
    while (apiReadDir(handle, buffer))
        seen.insert(buffer);
    std::set<std::string> expected = ScratchDir::names();
    expected.insert({".", ".."});
    EXPECT_EQ(seen, expected);

    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(apiReadDir(handle, buffer), 0);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(buffer[255], '#');
    EXPECT_EQ(apiReadDir(handle, nullptr), 0);
    EXPECT_EQ(apiCloseDir(handle), 1);

    EXPECT_EQ(apiOpenDir("/nonexistent/korel2d"), nullptr);
    EXPECT_EQ(apiOpenDir(nullptr), nullptr);
    EXPECT_EQ(apiReadDir(nullptr, buffer), 0);
    EXPECT_EQ(apiCloseDir(nullptr), 0);
}

TEST(Platform, LoadsALibraryAndResolvesItsSymbols)
{
    void* lib = apiDllOpen("libm.so.6");
    ASSERT_NE(lib, nullptr);
    auto* cosine = reinterpret_cast<double (*)(double)>(apiDllGetSymbol(lib, "cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);

    CaptureStdout();
    EXPECT_EQ(apiDllGetSymbol(lib, "krdNoSuchEntryInfo"), nullptr);
    const std::string line = GetCapturedStdout();
    EXPECT_EQ(line.rfind("apiDllGetSymbol: ", 0), 0u) << line;
    EXPECT_NE(line.find("krdNoSuchEntryInfo"), std::string::npos) << line;
    EXPECT_EQ(line.back(), '\n');

    // A loader error left pending by someone else must not fail the next look-up.
    ASSERT_EQ(dlsym(lib, "krdAnotherMissingEntry"), nullptr);
    EXPECT_NE(apiDllGetSymbol(lib, "sin"), nullptr);
    EXPECT_EQ(apiDllClose(lib), 0);
}

TEST(Platform, MissingLibraryAndNullArgumentsPrintWhyTheLoaderRefused)
{
    CaptureStdout();
    EXPECT_EQ(apiDllOpen("/nonexistent/libKrdMissing.so"), nullptr);
    std::string line = GetCapturedStdout();
    EXPECT_EQ(line.rfind("apiDllOpen: ", 0), 0u) << line;
    EXPECT_NE(line.find("/nonexistent/libKrdMissing.so"), std::string::npos) << line;
    EXPECT_EQ(line.back(), '\n');

    CaptureStdout();
    EXPECT_EQ(apiDllOpen(nullptr), nullptr);
    EXPECT_EQ(apiDllGetSymbol(nullptr, nullptr), nullptr);
    EXPECT_EQ(GetCapturedStdout(), "apiDllOpen: path = NULL\napiDllGetSymbol: handle 0x0 symbol 0x0\n");

    void* lib = apiDllOpen("libm.so.6");
    ASSERT_NE(lib, nullptr);
    CaptureStdout();
    EXPECT_EQ(apiDllGetSymbol(lib, nullptr), nullptr);
    line = GetCapturedStdout();
    EXPECT_EQ(line.rfind("apiDllGetSymbol: handle 0x", 0), 0u) << line;
    EXPECT_NE(line.find(" symbol 0x0\n"), std::string::npos) << line;
    apiDllClose(lib);
    EXPECT_EQ(apiDllClose(nullptr), 0);
}

TEST(Platform, ReleaseTexts)
{
    EXPECT_EQ(KGet_releasenr(), 304);

    const char* release = KGet_release();
    EXPECT_TRUE(testing::internal::RE::FullMatch(release, "Korel2D 3\\.4\\.1 20[0-9][0-9]")) << release;
    const char* version = KGet_releaseshort();
    EXPECT_STREQ(version, "3.4.1");
    EXPECT_EQ(release, version); // one buffer: the release text is gone
    EXPECT_STREQ(release, "3.4.1");

    const char* built = get_ctime();
    EXPECT_TRUE(testing::internal::RE::FullMatch(built, "[A-Z][a-z][a-z] [ 0-9][0-9] 20[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]"))
        << built;
    EXPECT_NE(built, version);
}

TEST(Platform, NoGlContextWithoutOne)
{
    EXPECT_EQ(getGlContext(), nullptr);
}

} // namespace
