/**
 * @file KorelDataSource.h
 * libKorel2D data sources: what a data-source plug-in compiles against, and all it needs.
 *
 * Sections:
 *  1. Interface version
 *  2. Records: parameter slot, parameter description, variable
 *  3. Services the library puts into every source record
 *  4. Entry points of a source, and the source record
 *
 * The field order and widths of DD_DATA_TYPE_STRUCT, VARIABLE_STRUCT, PARA_STRUCT and
 * OPTION_STRUCT are a binary contract with plug-ins built separately, fixed by the interface
 * version KRD_INTERFACE_VERSION that a plug-in's krdVersion() returns. Compiles as C and as C++.
 *
 * A plug-in is a shared library named libKrd<Name>.so, found at view load in ".", then in
 * $KOREL_HOME/bin and $KOREL_HOME. It links nothing of the library: the services it may call
 * (init, option, addVariable, log, ...) come in the source record. It exports
 *   int krdVersion(void);                           returning KRD_INTERFACE_VERSION
 *   int krd<Name>Info(DD_DATA_TYPE_STRUCT*);        mandatory: init, then one option per parameter
 * and any of these entry points, each of which may be left out:
 *   krd<Name>Open, Close, Run, PostRun, StartView, NewData  (DD_DATA_TYPE_STRUCT* source)
 *   krd<Name>Get, Set                               (VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
 *   krd<Name>NewVariable                            (VARIABLE_STRUCT* variable)
 *   krd<Name>CallbackData  (int index, int value, void* argument, DD_DATA_TYPE_STRUCT* source)
 *   krd<Name>CallbackVar   (int index, int value, void* argument, VARIABLE_STRUCT* variable)
 * Info runs with the library loaded for that call only; Open, StartView and Close run on the
 * thread that starts and stops the view; Run, Set, Get and PostRun run once per data cycle on
 * the drawing thread or the view's data thread, one thread at a time, and must not block.
 * Type numbers below 7 belong to the built-in sources.
 */
#ifndef KOREL_DATA_SOURCE_H
#define KOREL_DATA_SOURCE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ================================================================ 1. interface version and type codes */

/** What a plug-in's krdVersion() returns: the layout of the records below. */
#define KRD_INTERFACE_VERSION 324

/** Variable type codes (VARIABLE_STRUCT.type). The value buffer holds 8 bytes, 256 for text. */
enum {
    KR_VAR_FLOAT = 0,  /* IEEE single */
    KR_VAR_DOUBLE = 1, /* IEEE double */
    KR_VAR_INT8 = 2,
    KR_VAR_UINT8 = 3,
    KR_VAR_INT16 = 4,
    KR_VAR_UINT16 = 5,
    KR_VAR_INT32 = 6,
    KR_VAR_UINT32 = 7,
    KR_VAR_INT64 = 8,  /* copies between buffers move only the low half */
    KR_VAR_UINT64 = 9, /* likewise */
    KR_VAR_TEXT = 10   /* at most 255 characters and a terminator */
};

/** The first argument after the record of option(): whose parameter it describes. */
enum { KRD_SCOPE_DATA = 0, KRD_SCOPE_VARIABLE = 1 };
/** The field an editing host shows for a parameter (OPTION_STRUCT.kind). */
enum { KRD_FIELD_TEXT = 0, KRD_FIELD_LIST = 1, KRD_FIELD_BUTTON = 2, KRD_FIELD_FORMULA = 3 };
/** Type numbers of the built-in sources; a plug-in takes one of 7 or above. */
enum {
    KRD_TYPE_AUTO = 1,
    KRD_TYPE_CONSTANT = 2,
    KRD_TYPE_SHARED_MEMORY = 3,
    KRD_TYPE_UDP = 4,
    KRD_TYPE_INTERNAL = 5,
    KRD_TYPE_CALCULATOR = 6
};

/* ================================================================ 2. records */

#ifndef KOREL_SOURCE_RECORDS_NAMED
/** Set once the two record names below are declared, so that they are declared once. */
#define KOREL_SOURCE_RECORDS_NAMED
/** A data source: see struct DD_DATA_TYPE_STRUCT. */
typedef struct DD_DATA_TYPE_STRUCT DD_DATA_TYPE_STRUCT;
/** A variable of a source: see struct VARIABLE_STRUCT. */
typedef struct VARIABLE_STRUCT VARIABLE_STRUCT;
#endif

/** @typedef PARA_STRUCT
 * One parameter slot, of a source or of a variable. */
typedef struct PARA_STRUCT {
    int32_t ival; /* the item number of a list, free otherwise */
    char* sval;   /* text value, owned by the slot */
    uint32_t size; /* capacity of sval in bytes, 64 when created */
} PARA_STRUCT;

/** @typedef OPTION_STRUCT
 * Description of one parameter, for an editing host to show a form. */
typedef struct OPTION_STRUCT {
    int32_t kind; /* 0 text field, 1 list, 2 button, 3 formula field */
    char title[32];
    uint32_t flags;
    int32_t count; /* number of items */
    char* items;   /* count texts of 32 bytes, one after the other: list choices or a button caption */
} OPTION_STRUCT;

/* A named typed value of a source. Type codes: 0 float, 1 double, 2/3 signed/unsigned 8 bits,
 * 4/5 16 bits, 6/7 32 bits, 8/9 long, 10 text of up to 255 characters. */
struct VARIABLE_STRUCT {
    int32_t type;
    char name[64];
    PARA_STRUCT* para;
    void* value; /* value buffer, owned by the library; null until the view first starts */
    uint8_t changed; /* set before Set: the value differs from lastValue */
    void* user;      /* free for the source */
    int32_t readWrite; /* the view can write it: it gets Set calls */
    int32_t nrPara;
    void* global; /* the plug-in's global of this name, for sources with global variables */
    uint64_t lastValue;
    VARIABLE_STRUCT* prev;
    VARIABLE_STRUCT* next;
    char defaultValue[64]; /* text written at start; empty for none */
    uint8_t written;       /* an input action wrote the value */
};

/* ================================================================ 3. services in the source record */

/** init(source, name, type number, mode): names the source; the first call of an Info. */
typedef int (*KRD_INIT)(DD_DATA_TYPE_STRUCT* source, const char* name, int id, int mode);
/** option(source, scope, kind, flags, title, ...): describes the next parameter. scope 0: data
 *  parameter, else variable parameter. Kind 1 takes item texts ending with a null pointer, kind 2
 *  its caption. */
typedef int (*KRD_OPTION)(DD_DATA_TYPE_STRUCT* source, int scope, int kind, unsigned flags, const char* title, ...);
/** addVariable(source, name, type code, ...): adds a variable; the parameter values (texts)
 *  follow in the order of varOptions. */
typedef int (*KRD_ADD_VARIABLE)(DD_DATA_TYPE_STRUCT* source, const char* name, int type, ...);
/** deleteAllVariables(source): empties the source's variable list. */
typedef int (*KRD_DELETE_ALL_VARIABLES)(DD_DATA_TYPE_STRUCT* source);
/** getAllVariables(source): the variables' names, an array ending with null that the library
 *  keeps until the next call. */
typedef char** (*KRD_GET_ALL_VARIABLES)(DD_DATA_TYPE_STRUCT* source);
/** getAllVariablesS(source): the variables, an array ending with null that the library keeps
 *  until the next call. */
typedef VARIABLE_STRUCT** (*KRD_GET_ALL_VARIABLES_S)(DD_DATA_TYPE_STRUCT* source);
/** log(format, ...): a printf-style progress message into the library's log. */
typedef int (*KRD_LOG)(const char* format, ...);

/* ================================================================ 4. entry points and the source record */

/** krdVersion(): KRD_INTERFACE_VERSION of the plug-in. */
typedef int (*KRD_VERSION)(void);
/** Info, Open, Close, Run, PostRun, StartView, NewData (source). Any but Info may be null. */
typedef int (*KRD_SOURCE_FN)(DD_DATA_TYPE_STRUCT* source);
/** Get, Set (variable, source): moves one variable's value. May be null. */
typedef int (*KRD_VARIABLE_FN)(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source);
/** StartViewAll (all sources of the view, source). May be null. */
typedef int (*KRD_START_VIEW_ALL)(DD_DATA_TYPE_STRUCT* list, DD_DATA_TYPE_STRUCT* source);
/** NewVariable (variable): defaults of a variable an editing tool adds. May be null. */
typedef int (*KRD_NEW_VARIABLE)(VARIABLE_STRUCT* variable);
/** CallbackData (parameter index, value, argument, source): a data parameter changed in a form. */
typedef int (*KRD_CALLBACK_DATA)(int index, int value, void* argument, DD_DATA_TYPE_STRUCT* source);
/** CallbackVar (parameter index, value, argument, variable): a variable parameter changed in a form. */
typedef int (*KRD_CALLBACK_VAR)(int index, int value, void* argument, VARIABLE_STRUCT* variable);

/* One data source: its type number, parameters, variables and entry points. */
struct DD_DATA_TYPE_STRUCT {
    char name[64];
    int32_t id; /* type number, unique in a list */
    PARA_STRUCT* para; /* data parameter slots */
    void* data;        /* private state of the source, from Open to Close */
    KRD_INIT init;
    KRD_OPTION option;
    KRD_ADD_VARIABLE addVariable;
    KRD_DELETE_ALL_VARIABLES deleteAllVariables;
    KRD_GET_ALL_VARIABLES getAllVariables;
    KRD_GET_ALL_VARIABLES_S getAllVariablesS;
    KRD_LOG log;
    VARIABLE_STRUCT* variables;
    int32_t globalVariables; /* 1: the library copies variables to and from the plug-in's globals */
    int32_t nrData;          /* number of data parameters */
    int32_t nrVar;           /* number of parameters per variable */
    OPTION_STRUCT* dataOptions;
    OPTION_STRUCT* varOptions;
    char libPath[512];
    char libName[256]; /* what stands between "libKrd" and ".so"; empty for a built-in source */
    int32_t found;
    int32_t isStatic; /* built into the library */
    void* handle;     /* of the open plug-in */
    int32_t version;
    KRD_VERSION versionFn;
    KRD_SOURCE_FN info;
    KRD_SOURCE_FN open;
    KRD_SOURCE_FN close;
    KRD_SOURCE_FN run;
    KRD_SOURCE_FN postRun;
    KRD_VARIABLE_FN get;
    KRD_VARIABLE_FN set;
    KRD_SOURCE_FN startView;
    KRD_START_VIEW_ALL startViewAll;
    KRD_SOURCE_FN newData;
    KRD_NEW_VARIABLE newVariable;
    KRD_CALLBACK_DATA callbackData;
    KRD_CALLBACK_VAR callbackVar;
    DD_DATA_TYPE_STRUCT* prev;
    DD_DATA_TYPE_STRUCT* next;
};

#ifdef __cplusplus
}
#endif

#endif /* KOREL_DATA_SOURCE_H */
