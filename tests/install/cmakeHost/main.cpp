#include <Korel2D.h>

#include <cstdio>
#include <cstring>

int main()
{
    WINDOW_STRUCT* window = krWindowCreate();
    bool ok = window && std::strcmp(KGet_releaseshort(), "3.4.1") == 0 && KGet_releasenr() == 304;
    krWindowFree(window);
    std::printf("CMake host: %s\n", ok ? "linked" : "wrong library");
    return ok ? 0 : 1;
}
