#include "base/base.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <dlfcn.h>
#include <unistd.h>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;
using testing::internal::RE;

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
    char pattern[] = "/tmp/korel2d-dir-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    for (const std::string& name : {std::string("alpha.so"), std::string(255, 'n')})
        fclose(fopen((dir + "/" + name).c_str(), "w"));
    void* handle = apiOpenDir(dir.c_str());
    ASSERT_NE(handle, nullptr);
    std::set<std::string> seen;
    char buffer[256];
    while (apiReadDir(handle, buffer))
        seen.insert(buffer);
    std::filesystem::remove_all(dir);
    EXPECT_EQ(seen, (std::set<std::string>{".", "..", "alpha.so", std::string(255, 'n')}));

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

// Every refusal prints the loader's reason, naming what was asked for.
TEST(Platform, LoadsLibrariesAndSymbolsAndPrintsWhyTheLoaderRefused)
{
    void* lib = apiDllOpen("libm.so.6");
    ASSERT_NE(lib, nullptr);
    auto* cosine = reinterpret_cast<double (*)(double)>(apiDllGetSymbol(lib, "cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
    // A loader error left pending by someone else must not fail the next look-up.
    ASSERT_EQ(dlsym(lib, "krdAnotherMissingEntry"), nullptr);
    EXPECT_NE(apiDllGetSymbol(lib, "sin"), nullptr);

    CaptureStdout();
    EXPECT_EQ(apiDllGetSymbol(lib, "krdNoSuchEntryInfo"), nullptr);
    EXPECT_EQ(apiDllOpen("/nonexistent/libKrdMissing.so"), nullptr);
    EXPECT_EQ(apiDllGetSymbol(lib, nullptr), nullptr);
    EXPECT_EQ(apiDllOpen(nullptr), nullptr);
    EXPECT_EQ(apiDllGetSymbol(nullptr, nullptr), nullptr);
    EXPECT_TRUE(RE::FullMatch(GetCapturedStdout(), "apiDllGetSymbol: [^\n]*krdNoSuchEntryInfo[^\n]*\n"
                                                    "apiDllOpen: [^\n]*/nonexistent/libKrdMissing.so[^\n]*\n"
                                                    "apiDllGetSymbol: handle 0x[0-9a-f]+ symbol 0x0\n"
                                                    "apiDllOpen: path = NULL\n"
                                                    "apiDllGetSymbol: handle 0x0 symbol 0x0\n"));
    EXPECT_EQ(apiDllClose(lib), 0);
    EXPECT_EQ(apiDllClose(nullptr), 0);
}

TEST(Platform, ReleaseTexts)
{
    EXPECT_EQ(KGet_releasenr(), 304);
    const char* release = KGet_release();
    EXPECT_TRUE(RE::FullMatch(release, "Korel2D 3\\.4\\.1 20[0-9][0-9]")) << release;
    const char* version = KGet_releaseshort();
    EXPECT_EQ(release, version); // one buffer: the release text is gone
    EXPECT_STREQ(release, "3.4.1");
    const char* built = get_ctime();
    EXPECT_TRUE(RE::FullMatch(built, "[A-Z][a-z][a-z] [ 0-9][0-9] 20[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]"))
        << built;
    EXPECT_NE(built, version);
}

TEST(Platform, NoGlContextWithoutOne)
{
    EXPECT_EQ(getGlContext(), nullptr);
}

} // namespace
