// Which sources exist: the built-ins, the plug-ins found on disk, and how a view's stored
// sources are matched with them; loading and unloading plug-ins as a view starts and stops.
#include "KorelEdit.h"
#include "base/base.h"
#include "data/builtinSources.h"
#include "data/data.h"
#include "data/sourceRecords.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kKnownSlots = 10;
constexpr int kDirectorySize = 512;
constexpr int kPathSize = 256;
// "krd", the base name of up to 255 characters and the longest stem.
constexpr int kSymbolSize = 256 + 32;

// In type-number order; the first holder of a number stays, so plug-ins can't take these.
void (*const kBuiltinSources[])(DD_DATA_TYPE_STRUCT*) = {autoSourceEntries,   constantSourceEntries,
                                                             sharedMemorySourceEntries, udpSourceEntries,
                                                             internalSourceEntries, calculatorSourceEntries};

void setServices(DD_DATA_TYPE_STRUCT* source, bool plugin)
{
    source->init = krdInit;
    source->option = krdOption;
    source->addVariable = krdAddVariable;
    source->deleteAllVariables = krdDeleteAllVariables;
    source->getAllVariables = krdGetAllVariables;
    if (plugin) {
        source->getAllVariablesS = krdGetAllVariablesS;
        source->log = logMsgData;
    }
}

// Every entry point but StartViewAll, which only built-ins have.
void clearPluginEntries(DD_DATA_TYPE_STRUCT* source)
{
    source->versionFn = nullptr;
    source->info = source->open = source->close = source->run = source->postRun = nullptr;
    source->get = source->set = nullptr;
    source->startView = source->newData = nullptr;
    source->newVariable = nullptr;
    source->callbackData = nullptr;
    source->callbackVar = nullptr;
}

void copyEntries(DD_DATA_TYPE_STRUCT* to, const DD_DATA_TYPE_STRUCT* from)
{
    to->init = from->init;
    to->option = from->option;
    to->addVariable = from->addVariable;
    to->deleteAllVariables = from->deleteAllVariables;
    to->getAllVariables = from->getAllVariables;
    to->getAllVariablesS = from->getAllVariablesS;
    to->log = from->log;
    to->versionFn = from->versionFn;
    to->info = from->info;
    to->open = from->open;
    to->close = from->close;
    to->run = from->run;
    to->postRun = from->postRun;
    to->get = from->get;
    to->set = from->set;
    to->startView = from->startView;
    to->startViewAll = from->startViewAll;
    to->newData = from->newData;
    to->newVariable = from->newVariable;
    to->callbackData = from->callbackData;
    to->callbackVar = from->callbackVar;
}

template <class Entry> Entry lookUp(DD_DATA_TYPE_STRUCT* source, const char* stem)
{
    char symbol[kSymbolSize];
    snprintf(symbol, sizeof symbol, "krd%s%s", source->libName, stem);
    return reinterpret_cast<Entry>(apiDllGetSymbol(source->handle, symbol));
}

void unload(DD_DATA_TYPE_STRUCT* source)
{
    apiDllClose(source->handle);
    source->handle = nullptr;
}

// Appends to the known list unless the type number is taken; a refused record is destroyed.
void keepFirstOfType(DD_DATA_TYPE_STRUCT** knownTypes, DD_DATA_TYPE_STRUCT* source)
{
    if (checkDataType(*knownTypes, source->id)) {
        logMsg(2, "Data Type <%d> already present. skipped ...\n", source->id);
        delDataType(nullptr, source, 1);
        return;
    }
    appendDataType(knownTypes, source);
}

// A copy of the descriptions without their item lists, which stay with the known record.
OPTION_STRUCT* copyDescriptions(const OPTION_STRUCT* options, int32_t count)
{
    if (!options || count <= 0)
        return nullptr;
    OPTION_STRUCT* copy = static_cast<OPTION_STRUCT*>(calloc(size_t(count), sizeof(OPTION_STRUCT)));
    if (!copy)
        return nullptr;
    memcpy(copy, options, size_t(count) * sizeof(OPTION_STRUCT));
    for (int32_t i = 0; i < count; ++i)
        copy[i].items = nullptr;
    return copy;
}

void warnCountMismatch(const char* what, const DD_DATA_TYPE_STRUCT* library, int32_t libraryCount, int32_t viewCount)
{
    if (libraryCount == viewCount)
        return;
    logMsg(2, "Warning: nr of %s parameter mismatch\n", what);
    logMsg(2, "Data type %d %s\n", library->id, library->name);
    logMsg(2, "Library has %d parameters, view has %d parameters\n", libraryCount, viewCount);
}

void reconcile(DD_DATA_TYPE_STRUCT* view, const DD_DATA_TYPE_STRUCT* library)
{
    warnCountMismatch("data", library, library->nrData, view->nrData);
    warnCountMismatch("variable", library, library->nrVar, view->nrVar);
    view->globalVariables = library->globalVariables;
    view->nrData = library->nrData;
    view->nrVar = library->nrVar;
    // A source reads its parameters by position without knowing how many the view stored:
    // the slots grow to what it declared, new ones empty.
    ensureParaSlots(&view->para, view->nrData);
    // A variable counts the parameters its kind declares, and keeps any more the file stored.
    for (VARIABLE_STRUCT* variable = view->variables; variable; variable = variable->next)
        if (variable->nrPara < view->nrVar && ensureParaSlots(&variable->para, view->nrVar) == 0)
            variable->nrPara = view->nrVar;

    free(view->dataOptions);
    free(view->varOptions);
    view->dataOptions = copyDescriptions(library->dataOptions, library->nrData);
    view->varOptions = copyDescriptions(library->varOptions, library->nrVar);

    memcpy(view->name, library->name, sizeof view->name);
    view->id = library->id;
    memcpy(view->libPath, library->libPath, sizeof view->libPath);
    memcpy(view->libName, library->libName, sizeof view->libName);
    view->isStatic = library->isStatic;
    copyEntries(view, library);
    view->found = 1;
}

bool isPluginFileName(const char* entry)
{
    const char* dot = strrchr(entry, '.');
    return dot && strcmp(dot, ".so") == 0 && strncmp(entry, "libKrd", 6) == 0;
}

void searchDirectory(DD_DATA_TYPE_STRUCT** knownTypes, const char* directory)
{
    void* handle = apiOpenDir(directory);
    if (!handle)
        return;
    char entry[256];
    while (apiReadDir(handle, entry)) {
        if (!isPluginFileName(entry))
            continue;
        char path[kPathSize];
        if (snprintf(path, sizeof path, "%s/%s", directory, entry) >= int(sizeof path)) {
            logMsg(1, "error opening Dynamic Data Source %s/%s\n", directory, entry);
            continue;
        }
        // Between "libKrd" and the last dot.
        char baseName[256];
        snprintf(baseName, sizeof baseName, "%.*s", int(strrchr(entry, '.') - entry - 6), entry + 6);
        kriAppendDDsource(knownTypes, path, baseName);
    }
    apiCloseDir(handle);
}

void resolveGlobals(DD_DATA_TYPE_STRUCT* source)
{
    for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
        char name[128];
        snprintf(name, sizeof name, "%s", variable->name);
        variable->global = source->handle ? apiDllGetSymbol(source->handle, name) : nullptr;
        if (!variable->global)
            logMsg(1, "error global variable %s\n", name);
    }
}

} // namespace

int kriLoadStaticDataSources(DD_DATA_TYPE_STRUCT** knownTypes)
{
    if (!knownTypes)
        return -1;
    for (auto setEntries : kBuiltinSources) {
        DD_DATA_TYPE_STRUCT* source = createDataType(kKnownSlots);
        if (!source)
            return -1;
        source->isStatic = 1;
        setServices(source, false);
        setEntries(source);
        source->info(source);
        logMsg(3, "Korel Static Data Source: <type=%d> %s \n", source->id, source->name);
        keepFirstOfType(knownTypes, source);
    }
    return 0;
}

int kriLoadDataSources(DD_DATA_TYPE_STRUCT** knownTypes)
{
    if (!knownTypes)
        return -1;
    searchDirectory(knownTypes, ".");
    if (const char* home = getenv("KOREL_HOME")) {
        char directory[kDirectorySize];
        snprintf(directory, sizeof directory, "%s/bin", home);
        searchDirectory(knownTypes, directory);
        snprintf(directory, sizeof directory, "%s", home);
        searchDirectory(knownTypes, directory);
    }
    return 0;
}

int kriAppendDDsource(DD_DATA_TYPE_STRUCT** knownTypes, const char* path, const char* baseName)
{
    if (!knownTypes || !path || !baseName)
        return -1;
    DD_DATA_TYPE_STRUCT* source = createDataType(kKnownSlots);
    if (!source)
        return -1;
    snprintf(source->libPath, sizeof source->libPath, "%s", path);
    snprintf(source->libName, sizeof source->libName, "%s", baseName);
    if (openDDsource(path, baseName, source) != 0) {
        logMsg(1, "error opening Dynamic Data Source %s\n", path);
        delDataType(nullptr, source, 1);
        return -1;
    }
    source->info(source);
    logMsg(3, "Korel Dynamic Data Source: <type=%d version %d> <%s> <%s>\n", source->id, source->version, source->name,
           path);
    // Only the description stays; the file is loaded again when a view starts.
    closeDDsource(source);
    keepFirstOfType(knownTypes, source);
    return 0;
}

int openDDsource(const char* path, const char* baseName, DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return -1;
    if (source->isStatic)
        return 0;
    source->handle = apiDllOpen(path);
    if (!source->handle) {
        logMsg(1, "error opening <%s> <%s>\n", path ? path : "", baseName ? baseName : "");
        return -1;
    }
    source->version = 0;
    setServices(source, true);
    source->versionFn = reinterpret_cast<KRD_VERSION>(apiDllGetSymbol(source->handle, "krdVersion"));
    if (!source->versionFn) {
        source->info = nullptr;
        logMsg(1, "Module <%s> No Version Information, recompile datasource !\n", path);
        unload(source);
        return -1;
    }
    source->version = source->versionFn();
    if (source->version != KRD_INTERFACE_VERSION) {
        logMsg(1, "Module <%s> Wrong version %d, recompile datasource !\n", path, source->version);
        clearPluginEntries(source);
        unload(source);
        return -1;
    }
    source->info = lookUp<KRD_SOURCE_FN>(source, "Info");
    if (!source->info) {
        char symbol[kSymbolSize];
        snprintf(symbol, sizeof symbol, "krd%sInfo", source->libName);
        logMsg(1, "Module <%s> Function <%s> not found !\n", path, symbol);
        clearPluginEntries(source);
        unload(source);
        return -1;
    }
    source->open = lookUp<KRD_SOURCE_FN>(source, "Open");
    source->close = lookUp<KRD_SOURCE_FN>(source, "Close");
    source->run = lookUp<KRD_SOURCE_FN>(source, "Run");
    source->postRun = lookUp<KRD_SOURCE_FN>(source, "PostRun");
    source->get = lookUp<KRD_VARIABLE_FN>(source, "Get");
    source->set = lookUp<KRD_VARIABLE_FN>(source, "Set");
    source->startView = lookUp<KRD_SOURCE_FN>(source, "StartView");
    source->newData = lookUp<KRD_SOURCE_FN>(source, "NewData");
    source->newVariable = lookUp<KRD_NEW_VARIABLE>(source, "NewVariable");
    source->callbackData = lookUp<KRD_CALLBACK_DATA>(source, "CallbackData");
    source->callbackVar = lookUp<KRD_CALLBACK_VAR>(source, "CallbackVar");
    return 0;
}

int closeDDsource(DD_DATA_TYPE_STRUCT* source)
{
    if (!source || source->isStatic)
        return 0;
    clearPluginEntries(source);
    unload(source);
    return 0;
}

int updateDataTypes(DD_DATA_TYPE_STRUCT* knownTypes, DD_DATA_TYPE_STRUCT* dataTypes)
{
    for (DD_DATA_TYPE_STRUCT* view = dataTypes; view; view = view->next) {
        const DD_DATA_TYPE_STRUCT* library = knownTypes;
        while (library && library->id != view->id)
            library = library->next;
        if (library) {
            reconcile(view, library);
            continue;
        }
        // The source stays with its variables, so that the view still loads and saves whole.
        logMsg(2, "Warning: data type %d not found. deleted !\n", view->id);
        view->found = 0;
        snprintf(view->name, sizeof view->name, "unknown Data Source %d", view->id);
    }
    return 0;
}

int openDataSources(DD_DATA_TYPE_STRUCT* list)
{
    for (DD_DATA_TYPE_STRUCT* source = list; source; source = source->next) {
        // A source that wasn't found at load has nothing to load and has been reported.
        if (!source->found)
            continue;
        if (openDDsource(source->libPath, source->libName, source) != 0)
            continue;
        if (source->globalVariables == 1)
            resolveGlobals(source);
        if (source->open)
            source->open(source);
    }
    return 0;
}

int callStartView(DD_DATA_TYPE_STRUCT* list)
{
    for (DD_DATA_TYPE_STRUCT* source = list; source; source = source->next)
        if (source->startView)
            source->startView(source);
    // Only once every source has settled its variables: a StartView may replace them, and a
    // source that keeps records of others' variables must never see the deleted ones.
    for (DD_DATA_TYPE_STRUCT* source = list; source; source = source->next)
        if (source->startViewAll)
            source->startViewAll(list, source);
    return 0;
}

int closeDataSources(DD_DATA_TYPE_STRUCT* list)
{
    for (DD_DATA_TYPE_STRUCT* source = list; source; source = source->next) {
        if (source->close)
            source->close(source);
        closeDDsource(source);
        // The globals belonged to the unloaded file.
        for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
            variable->global = nullptr;
    }
    return 0;
}
